#include "machine/wmi/ClassObject.h"

#include "machine/Text.h"
#include "machine/WideText.h"
#include "machine/wmi/Variants.h"

namespace machine::wmi {

using cim::Class;
using cim::Describe;
using cim::FindMethod;
using cim::FindProperty;
using cim::IsSecret;
using cim::Method;
using cim::Properties;
using cim::Property;
using cim::Type;

namespace {

constexpr LONG kLocalFlavor = 0;  // WBEM_FLAVOR_ORIGIN_LOCAL

}  // namespace

std::string InParametersOf(const Class& definition, const Method& method) {
    return "__PARAMETERS of " + std::string(definition.name) + "." + std::string(method.name);
}

ClassObject::ClassObject(Core& core, std::string className, Kind kind, Properties properties,
                         const Class* definition)
    : ComObject(core, "IWbemClassObject"),
      className_(std::move(className)),
      kind_(kind),
      properties_(std::move(properties)),
      definition_(definition) {}

void ClassObject::Discard() {
    properties_.clear();
}

HRESULT ClassObject::Get(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE* type, LONG* flavor) {
    const std::string text = Narrow(name);
    Call call(Machine(), InterfaceName(), "Get", {{"name", text}});
    CheckUsable(call);
    if (const auto fault = call.Fault()) {
        return call.Hresult(*fault);
    }
    if (name == nullptr || flags != 0) {
        call.Unexpected("a property is read by its name with flags 0");
        return call.Hresult(WBEM_E_INVALID_PARAMETER);
    }
    const Property system{"__CLASS", Type::kText, className_};
    const Property* property =
        EqualNoCase(text, system.name) ? &system : FindProperty(properties_, text);
    if (property == nullptr) {
        return call.Hresult(WBEM_E_NOT_FOUND);
    }
    if (value != nullptr) {
        const HRESULT result = ToVariant(property->value, *value);
        if (FAILED(result)) {
            return call.Hresult(result);
        }
        call.AddArgument("value", IsSecret(text) ? "***" : Describe(property->value));
    }
    if (type != nullptr) {
        *type = CimTypeOf(property->type);
    }
    if (flavor != nullptr) {
        *flavor = kLocalFlavor;
    }
    return call.Hresult(S_OK);
}

HRESULT ClassObject::Put(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE type) {
    const std::string text = Narrow(name);
    Call call(Machine(), InterfaceName(), "Put", {{"name", text}});
    CheckUsable(call);
    if (const auto fault = call.Fault()) {
        return call.Hresult(*fault);
    }
    if (name == nullptr || flags != 0 || value == nullptr || kind_ != Kind::kInstance) {
        call.Unexpected("only instances take values, by name, with flags 0");
        return call.Hresult(WBEM_E_INVALID_PARAMETER);
    }
    Property* property = FindProperty(properties_, text);
    if (property == nullptr) {
        call.Unexpected("no property \"" + text + "\" of " + className_);
        return call.Hresult(WBEM_E_NOT_FOUND);
    }
    // The type of an instance's property is its class's: 0 stands for that.
    if (type != 0 && type != CimTypeOf(property->type)) {
        return call.Hresult(WBEM_E_TYPE_MISMATCH);
    }
    const auto converted = FromVariant(*value, property->type);
    if (!converted) {
        call.AddArgument("variant type", Hex(value->vt));
        return call.Hresult(WBEM_E_TYPE_MISMATCH);
    }
    call.AddArgument("value", IsSecret(text) ? "***" : Describe(*converted));
    property->value = *converted;
    return call.Hresult(S_OK);
}

HRESULT ClassObject::SpawnInstance(LONG flags, IWbemClassObject** instance) {
    Call call(Machine(), InterfaceName(), "SpawnInstance", {{"class", className_}});
    CheckUsable(call);
    if (const auto fault = call.Fault()) {
        return call.Hresult(*fault);
    }
    if (flags != 0 || instance == nullptr || kind_ != Kind::kDefinition) {
        call.Unexpected("only a class spawns instances, with flags 0");
        return call.Hresult(WBEM_E_INVALID_PARAMETER);
    }
    *instance = MakeComObject<ClassObject>(Machine(), className_, Kind::kInstance, properties_)
                    .HandOut(call);
    return call.Hresult(S_OK);
}

HRESULT ClassObject::GetMethod(LPCWSTR name, LONG flags, IWbemClassObject** in,
                               IWbemClassObject** out) {
    const std::string text = Narrow(name);
    Call call(Machine(), InterfaceName(), "GetMethod", {{"class", className_}, {"name", text}});
    CheckUsable(call);
    if (const auto fault = call.Fault()) {
        return call.Hresult(*fault);
    }
    if (flags != 0 || definition_ == nullptr) {
        call.Unexpected("only a class definition has methods, looked up with flags 0");
        return call.Hresult(WBEM_E_INVALID_PARAMETER);
    }
    const Method* method = FindMethod(*definition_, text);
    if (method == nullptr) {
        return call.Hresult(WBEM_E_NOT_FOUND);
    }
    if (in != nullptr) {
        // A method without in-parameters has no definition of them.
        *in = method->inParameters.empty()
                  ? nullptr
                  : MakeComObject<ClassObject>(Machine(), InParametersOf(*definition_, *method),
                                               Kind::kDefinition, method->inParameters)
                        .HandOut(call);
    }
    if (out != nullptr) {
        *out = MakeComObject<ClassObject>(Machine(), "__PARAMETERS", Kind::kDefinition,
                                          Properties{{"ReturnValue", Type::kUInt32}})
                   .HandOut(call);
    }
    return call.Hresult(S_OK);
}

}  // namespace machine::wmi
