// The fake IWbemLocator, IWbemServices and IEnumWbemClassObject.
#pragma once

#include <windows.h>

#include <wbemcli.h>

#include <string>
#include <vector>

#include "machine/cim/Schema.h"
#include "machine/com/ComObject.h"

namespace machine::wmi {

class Enumerator : public ComObject<IEnumWbemClassObject, IID_IEnumWbemClassObject> {
public:
    /// `failure` is what a query that was wrong has to say for itself, at the first Next.
    Enumerator(Core& core, std::string query, std::string className,
               std::vector<cim::Properties> rows, HRESULT failure);

    HRESULT STDMETHODCALLTYPE Next(LONG timeout, ULONG count, IWbemClassObject** objects,
                                   ULONG* returned) override;
    HRESULT STDMETHODCALLTYPE Reset() override { return NotServed("Reset"); }
    HRESULT STDMETHODCALLTYPE NextAsync(ULONG, IWbemObjectSink*) override {
        return NotServed("NextAsync");
    }
    HRESULT STDMETHODCALLTYPE Clone(IEnumWbemClassObject**) override { return NotServed("Clone"); }
    HRESULT STDMETHODCALLTYPE Skip(LONG, ULONG) override { return NotServed("Skip"); }

private:
    void Discard() override { rows_.clear(); }

    std::string query_;
    std::string className_;
    std::vector<cim::Properties> rows_;
    std::size_t position_ = 0;
    HRESULT failure_;
};

class Services : public ComObject<IWbemServices, IID_IWbemServices> {
public:
    explicit Services(Core& core) : ComObject(core, "IWbemServices") {}

    HRESULT STDMETHODCALLTYPE GetObject(BSTR path, LONG flags, IWbemContext* context,
                                        IWbemClassObject** object,
                                        IWbemCallResult** result) override;
    HRESULT STDMETHODCALLTYPE ExecQuery(BSTR language, BSTR query, LONG flags,
                                        IWbemContext* context,
                                        IEnumWbemClassObject** enumerator) override;
    HRESULT STDMETHODCALLTYPE ExecMethod(BSTR path, BSTR method, LONG flags, IWbemContext* context,
                                         IWbemClassObject* in, IWbemClassObject** out,
                                         IWbemCallResult** result) override;

    HRESULT STDMETHODCALLTYPE OpenNamespace(BSTR, LONG, IWbemContext*, IWbemServices**,
                                            IWbemCallResult**) override {
        return NotServed("OpenNamespace");
    }
    HRESULT STDMETHODCALLTYPE CancelAsyncCall(IWbemObjectSink*) override {
        return NotServed("CancelAsyncCall");
    }
    HRESULT STDMETHODCALLTYPE QueryObjectSink(LONG, IWbemObjectSink**) override {
        return NotServed("QueryObjectSink");
    }
    HRESULT STDMETHODCALLTYPE GetObjectAsync(BSTR, LONG, IWbemContext*, IWbemObjectSink*) override {
        return NotServed("GetObjectAsync");
    }
    HRESULT STDMETHODCALLTYPE PutClass(IWbemClassObject*, LONG, IWbemContext*,
                                       IWbemCallResult**) override {
        return NotServed("PutClass");
    }
    HRESULT STDMETHODCALLTYPE PutClassAsync(IWbemClassObject*, LONG, IWbemContext*,
                                            IWbemObjectSink*) override {
        return NotServed("PutClassAsync");
    }
    HRESULT STDMETHODCALLTYPE DeleteClass(BSTR, LONG, IWbemContext*, IWbemCallResult**) override {
        return NotServed("DeleteClass");
    }
    HRESULT STDMETHODCALLTYPE DeleteClassAsync(BSTR, LONG, IWbemContext*,
                                               IWbemObjectSink*) override {
        return NotServed("DeleteClassAsync");
    }
    HRESULT STDMETHODCALLTYPE CreateClassEnum(BSTR, LONG, IWbemContext*,
                                              IEnumWbemClassObject**) override {
        return NotServed("CreateClassEnum");
    }
    HRESULT STDMETHODCALLTYPE CreateClassEnumAsync(BSTR, LONG, IWbemContext*,
                                                   IWbemObjectSink*) override {
        return NotServed("CreateClassEnumAsync");
    }
    HRESULT STDMETHODCALLTYPE PutInstance(IWbemClassObject*, LONG, IWbemContext*,
                                          IWbemCallResult**) override {
        return NotServed("PutInstance");
    }
    HRESULT STDMETHODCALLTYPE PutInstanceAsync(IWbemClassObject*, LONG, IWbemContext*,
                                               IWbemObjectSink*) override {
        return NotServed("PutInstanceAsync");
    }
    HRESULT STDMETHODCALLTYPE DeleteInstance(BSTR, LONG, IWbemContext*,
                                             IWbemCallResult**) override {
        return NotServed("DeleteInstance");
    }
    HRESULT STDMETHODCALLTYPE DeleteInstanceAsync(BSTR, LONG, IWbemContext*,
                                                  IWbemObjectSink*) override {
        return NotServed("DeleteInstanceAsync");
    }
    HRESULT STDMETHODCALLTYPE CreateInstanceEnum(BSTR, LONG, IWbemContext*,
                                                 IEnumWbemClassObject**) override {
        return NotServed("CreateInstanceEnum");
    }
    HRESULT STDMETHODCALLTYPE CreateInstanceEnumAsync(BSTR, LONG, IWbemContext*,
                                                      IWbemObjectSink*) override {
        return NotServed("CreateInstanceEnumAsync");
    }
    HRESULT STDMETHODCALLTYPE ExecQueryAsync(BSTR, BSTR, LONG, IWbemContext*,
                                             IWbemObjectSink*) override {
        return NotServed("ExecQueryAsync");
    }
    HRESULT STDMETHODCALLTYPE ExecNotificationQuery(BSTR, BSTR, LONG, IWbemContext*,
                                                    IEnumWbemClassObject**) override {
        return NotServed("ExecNotificationQuery");
    }
    HRESULT STDMETHODCALLTYPE ExecNotificationQueryAsync(BSTR, BSTR, LONG, IWbemContext*,
                                                         IWbemObjectSink*) override {
        return NotServed("ExecNotificationQueryAsync");
    }
    HRESULT STDMETHODCALLTYPE ExecMethodAsync(BSTR, BSTR, LONG, IWbemContext*, IWbemClassObject*,
                                              IWbemObjectSink*) override {
        return NotServed("ExecMethodAsync");
    }
};

class Locator : public ComObject<IWbemLocator, IID_IWbemLocator> {
public:
    explicit Locator(Core& core) : ComObject(core, "IWbemLocator") {}

    HRESULT STDMETHODCALLTYPE ConnectServer(BSTR resource, BSTR user, BSTR password, BSTR locale,
                                            LONG flags, BSTR authority, IWbemContext* context,
                                            IWbemServices** services) override;
};

}  // namespace machine::wmi
