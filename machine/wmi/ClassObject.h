// The fake IWbemClassObject: a class definition, a row of a query, or the parameters of a method.
#pragma once

#include <windows.h>

#include <wbemcli.h>

#include <string>

#include "machine/cim/Schema.h"
#include "machine/com/ComObject.h"

namespace machine::wmi {

class ClassObject : public ComObject<IWbemClassObject, IID_IWbemClassObject> {
public:
    enum class Kind { kDefinition, kInstance };

    /// `definition` has the methods of a class definition; null for everything else.
    ClassObject(Core& core, std::string className, Kind kind, cim::Properties properties,
                const cim::Class* definition = nullptr);

    const std::string& ClassName() const { return className_; }
    bool IsInstance() const { return kind_ == Kind::kInstance; }
    const cim::Properties& Values() const { return properties_; }

    HRESULT STDMETHODCALLTYPE Get(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE* type,
                                  LONG* flavor) override;
    HRESULT STDMETHODCALLTYPE Put(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE type) override;
    HRESULT STDMETHODCALLTYPE SpawnInstance(LONG flags, IWbemClassObject** instance) override;
    HRESULT STDMETHODCALLTYPE GetMethod(LPCWSTR name, LONG flags, IWbemClassObject** in,
                                        IWbemClassObject** out) override;

    HRESULT STDMETHODCALLTYPE GetQualifierSet(IWbemQualifierSet**) override {
        return NotServed("GetQualifierSet");
    }
    HRESULT STDMETHODCALLTYPE Delete(LPCWSTR) override { return NotServed("Delete"); }
    HRESULT STDMETHODCALLTYPE GetNames(LPCWSTR, LONG, VARIANT*, SAFEARRAY**) override {
        return NotServed("GetNames");
    }
    HRESULT STDMETHODCALLTYPE BeginEnumeration(LONG) override {
        return NotServed("BeginEnumeration");
    }
    HRESULT STDMETHODCALLTYPE Next(LONG, BSTR*, VARIANT*, CIMTYPE*, LONG*) override {
        return NotServed("Next");
    }
    HRESULT STDMETHODCALLTYPE EndEnumeration() override { return NotServed("EndEnumeration"); }
    HRESULT STDMETHODCALLTYPE GetPropertyQualifierSet(LPCWSTR, IWbemQualifierSet**) override {
        return NotServed("GetPropertyQualifierSet");
    }
    HRESULT STDMETHODCALLTYPE Clone(IWbemClassObject**) override { return NotServed("Clone"); }
    HRESULT STDMETHODCALLTYPE GetObjectText(LONG, BSTR*) override {
        return NotServed("GetObjectText");
    }
    HRESULT STDMETHODCALLTYPE SpawnDerivedClass(LONG, IWbemClassObject**) override {
        return NotServed("SpawnDerivedClass");
    }
    HRESULT STDMETHODCALLTYPE CompareTo(LONG, IWbemClassObject*) override {
        return NotServed("CompareTo");
    }
    HRESULT STDMETHODCALLTYPE GetPropertyOrigin(LPCWSTR, BSTR*) override {
        return NotServed("GetPropertyOrigin");
    }
    HRESULT STDMETHODCALLTYPE InheritsFrom(LPCWSTR) override { return NotServed("InheritsFrom"); }
    HRESULT STDMETHODCALLTYPE PutMethod(LPCWSTR, LONG, IWbemClassObject*,
                                        IWbemClassObject*) override {
        return NotServed("PutMethod");
    }
    HRESULT STDMETHODCALLTYPE DeleteMethod(LPCWSTR) override { return NotServed("DeleteMethod"); }
    HRESULT STDMETHODCALLTYPE BeginMethodEnumeration(LONG) override {
        return NotServed("BeginMethodEnumeration");
    }
    HRESULT STDMETHODCALLTYPE NextMethod(LONG, BSTR*, IWbemClassObject**,
                                         IWbemClassObject**) override {
        return NotServed("NextMethod");
    }
    HRESULT STDMETHODCALLTYPE EndMethodEnumeration() override {
        return NotServed("EndMethodEnumeration");
    }
    HRESULT STDMETHODCALLTYPE GetMethodQualifierSet(LPCWSTR, IWbemQualifierSet**) override {
        return NotServed("GetMethodQualifierSet");
    }
    HRESULT STDMETHODCALLTYPE GetMethodOrigin(LPCWSTR, BSTR*) override {
        return NotServed("GetMethodOrigin");
    }

private:
    void Discard() override;

    std::string className_;
    Kind kind_;
    cim::Properties properties_;
    const cim::Class* definition_;
};

/// The class of the objects that hold the in-parameters of a method, so that only those of the same
/// method are accepted for its call.
std::string InParametersOf(const cim::Class& definition, const cim::Method& method);

}  // namespace machine::wmi
