#include "machine/wmi/Services.h"

#include <algorithm>

#include "machine/Text.h"
#include "machine/WideText.h"
#include "machine/cim/ObjectPath.h"
#include "machine/cim/Wql.h"
#include "machine/wmi/ClassObject.h"

namespace machine::wmi {

using cim::CheckTarget;
using cim::Class;
using cim::DescribeParameters;
using cim::FindClass;
using cim::FindMethod;
using cim::FindObject;
using cim::Method;
using cim::ObjectPath;
using cim::ParseObjectPath;
using cim::ParseQuery;
using cim::Properties;
using cim::Property;
using cim::Query;
using cim::QueryAnswer;
using cim::RunQuery;
using cim::Type;

namespace {

constexpr LONG kQueryFlags = WBEM_FLAG_FORWARD_ONLY | WBEM_FLAG_RETURN_IMMEDIATELY |
                             WBEM_FLAG_ENSURE_LOCATABLE | WBEM_FLAG_DIRECT_READ |
                             WBEM_FLAG_USE_AMENDED_QUALIFIERS;

bool IsServedNamespace(std::string resource) {
    std::ranges::replace(resource, '/', '\\');
    for (const std::string_view local : {R"(\\.\)", R"(\\localhost\)"}) {
        if (EqualNoCase(std::string_view(resource).substr(0, local.size()), local)) {
            resource.erase(0, local.size());
            break;
        }
    }
    return EqualNoCase(resource, R"(root\cimv2)");
}

constexpr HRESULT CodeOf(WBEMSTATUS status) {
    return static_cast<HRESULT>(status);
}

}  // namespace

Enumerator::Enumerator(Core& core, std::string query, std::string className,
                       std::vector<Properties> rows, HRESULT failure)
    : ComObject(core, "IEnumWbemClassObject"),
      query_(std::move(query)),
      className_(std::move(className)),
      rows_(std::move(rows)),
      failure_(failure) {}

HRESULT Enumerator::Next(LONG timeout, ULONG count, IWbemClassObject** objects, ULONG* returned) {
    Call call(Machine(), InterfaceName(), "Next",
              {{"timeout", std::to_string(timeout)},
               {"count", std::to_string(count)},
               {"query", query_}});
    CheckUsable(call);
    if (objects == nullptr || returned == nullptr || count == 0) {
        call.Unexpected("Next needs room for at least one object");
        return call.Hresult(WBEM_E_INVALID_PARAMETER);
    }
    *returned = 0;
    if (const auto fault = call.Fault()) {
        return call.Hresult(*fault);
    }
    if (FAILED(failure_)) {
        return call.Hresult(failure_);
    }
    for (ULONG i = 0; i < count; ++i) {
        objects[i] = nullptr;
    }
    while (*returned < count && position_ < rows_.size()) {
        objects[(*returned)++] =
            MakeComObject<ClassObject>(Machine(), className_, ClassObject::Kind::kInstance,
                                       std::move(rows_[position_++]))
                .HandOut(call);
    }
    return call.Hresult(*returned == count ? HRESULT{WBEM_S_NO_ERROR} : HRESULT{WBEM_S_FALSE});
}

HRESULT Services::GetObject(BSTR path, LONG flags, IWbemContext* context, IWbemClassObject** object,
                            IWbemCallResult** result) {
    const std::string text = Narrow(path);
    Call call(Machine(), InterfaceName(), "GetObject", {{"path", text}});
    CheckUsable(call);
    if (const auto fault = call.Fault()) {
        return call.Hresult(*fault);
    }
    if (flags != 0 || context != nullptr || result != nullptr || object == nullptr) {
        call.Unexpected("objects are fetched with flags 0, at once, without a context");
        return call.Hresult(WBEM_E_INVALID_PARAMETER);
    }
    *object = nullptr;
    ObjectPath parsed;
    if (!ParseObjectPath(text, parsed)) {
        call.Unexpected("no object path: " + text);
        return call.Hresult(WBEM_E_INVALID_OBJECT_PATH);
    }
    // A class that a path names and the namespace lacks is "not found"; only queries call it
    // invalid.
    const Class* definition = FindClass(parsed.className);
    if (definition == nullptr) {
        call.Unexpected("no class " + parsed.className);
        return call.Hresult(WBEM_E_NOT_FOUND);
    }
    const std::string name(definition->name);
    if (parsed.isClass) {
        *object = MakeComObject<ClassObject>(Machine(), name, ClassObject::Kind::kDefinition,
                                             definition->properties, definition)
                      .HandOut(call);
        return call.Hresult(WBEM_S_NO_ERROR);
    }
    auto row = FindObject(Machine().state, *definition, parsed);
    if (!row) {
        return call.Hresult(WBEM_E_NOT_FOUND);
    }
    *object =
        MakeComObject<ClassObject>(Machine(), name, ClassObject::Kind::kInstance, std::move(*row))
            .HandOut(call);
    return call.Hresult(WBEM_S_NO_ERROR);
}

HRESULT Services::ExecQuery(BSTR language, BSTR query, LONG flags, IWbemContext* context,
                            IEnumWbemClassObject** enumerator) {
    const std::string text = Narrow(query);
    Call call(Machine(), InterfaceName(), "ExecQuery",
              {{"query", text}, {"flags", std::to_string(flags)}});
    CheckUsable(call);
    if (const auto fault = call.Fault()) {
        return call.Hresult(*fault);
    }
    if (enumerator == nullptr || context != nullptr || (flags & ~kQueryFlags) != 0) {
        call.Unexpected("a query needs an enumerator to fill, known flags and no context");
        return call.Hresult(WBEM_E_INVALID_PARAMETER);
    }
    *enumerator = nullptr;
    if (!EqualNoCase(Narrow(language), "WQL")) {
        call.Unexpected("query language " + Narrow(language));
        return call.Hresult(WBEM_E_INVALID_QUERY_TYPE);
    }
    Query parsed;
    std::vector<Properties> rows;
    HRESULT failure = WBEM_S_NO_ERROR;
    const QueryAnswer answer = ParseQuery(text, parsed) ? RunQuery(Machine().state, parsed, rows)
                                                        : QueryAnswer::kInvalidQuery;
    if (answer != QueryAnswer::kRows) {
        call.Unexpected("a query that the machine cannot answer: " + text);
        failure = CodeOf(answer == QueryAnswer::kNoSuchClass ? WBEM_E_INVALID_CLASS
                                                             : WBEM_E_INVALID_QUERY);
        // A semisynchronous query returns before it is looked at: Windows reports what is wrong
        // with it from Next. Only a synchronous one fails here.
        if ((flags & WBEM_FLAG_RETURN_IMMEDIATELY) == 0) {
            return call.Hresult(failure);
        }
    }
    call.AddArgument("rows", std::to_string(rows.size()));
    const Class* definition = FindClass(parsed.className);
    *enumerator = MakeComObject<Enumerator>(
                      Machine(), text, definition == nullptr ? "" : std::string(definition->name),
                      std::move(rows), failure)
                      .HandOut(call);
    return call.Hresult(WBEM_S_NO_ERROR);
}

HRESULT Services::ExecMethod(BSTR path, BSTR method, LONG flags, IWbemContext* context,
                             IWbemClassObject* in, IWbemClassObject** out,
                             IWbemCallResult** result) {
    const std::string pathText = Narrow(path);
    const std::string methodText = Narrow(method);
    Call call(Machine(), InterfaceName(), "ExecMethod",
              {{"path", pathText}, {"method", methodText}});
    CheckUsable(call);
    if (const auto fault = call.Fault()) {
        return call.Hresult(*fault);
    }
    if (flags != 0 || context != nullptr || result != nullptr) {
        call.Unexpected("methods are called with flags 0, at once, without a context");
        return call.Hresult(WBEM_E_INVALID_PARAMETER);
    }
    ObjectPath parsed;
    if (!ParseObjectPath(pathText, parsed)) {
        call.Unexpected("no object path: " + pathText);
        return call.Hresult(WBEM_E_INVALID_OBJECT_PATH);
    }
    const Class* definition = FindClass(parsed.className);
    if (definition == nullptr) {
        call.Unexpected("no class " + parsed.className);
        return call.Hresult(WBEM_E_NOT_FOUND);
    }
    const Method* called = FindMethod(*definition, methodText);
    if (called == nullptr) {
        call.Unexpected("no method " + methodText + " of " + parsed.className);
        return call.Hresult(WBEM_E_INVALID_METHOD);
    }
    Properties parameters = called->inParameters;
    if (in != nullptr) {
        const auto* object = FindComObject<ClassObject>(Machine(), in);
        if (object == nullptr || !object->IsInstance() ||
            object->ClassName() != InParametersOf(*definition, *called)) {
            call.Unexpected("the in-parameters are no spawned instance of those of " + methodText);
            return call.Hresult(WBEM_E_INVALID_METHOD_PARAMETERS);
        }
        parameters = object->Values();
    }
    const std::string described = DescribeParameters(parameters);
    call.AddArgument("in", described);
    if (const auto code = CheckTarget(Machine().state, *definition, *called, parsed); code != 0) {
        return call.Hresult(code);
    }
    const auto forced =
        Machine().faults.OnOutcome(called->name, {{"path", pathText}, {"in", described}});
    std::uint64_t milliseconds = 0;
    const std::uint32_t returnValue =
        forced ? *forced : called->run({Machine().state, parsed.key, milliseconds}, parameters);
    Machine().PassTime(milliseconds);
    call.AddArgument(forced ? "ReturnValue (injected)" : "ReturnValue",
                     std::to_string(returnValue));
    call.SetOutcome(returnValue);
    if (out != nullptr) {
        *out =
            MakeComObject<ClassObject>(
                Machine(), "__PARAMETERS", ClassObject::Kind::kInstance,
                Properties{{"ReturnValue", Type::kUInt32, static_cast<std::int32_t>(returnValue)}})
                .HandOut(call);
    }
    return call.Hresult(WBEM_S_NO_ERROR);
}

HRESULT Locator::ConnectServer(BSTR resource, BSTR user, BSTR password, BSTR locale, LONG flags,
                               BSTR authority, IWbemContext* context, IWbemServices** services) {
    Call call(Machine(), InterfaceName(), "ConnectServer",
              {{"namespace", Narrow(resource)}, {"user", Narrow(user)}});
    CheckUsable(call);
    if (const auto fault = call.Fault()) {
        return call.Hresult(*fault);
    }
    if (services == nullptr || context != nullptr || authority != nullptr || locale != nullptr ||
        (flags & ~LONG{WBEM_FLAG_CONNECT_USE_MAX_WAIT}) != 0) {
        call.Unexpected("connections take no locale, authority or context");
        return call.Hresult(WBEM_E_INVALID_PARAMETER);
    }
    *services = nullptr;
    if (user != nullptr || password != nullptr) {
        // Windows refuses an account for a connection to the own machine.
        call.Unexpected("an account for a local connection");
        return call.Hresult(WBEM_E_LOCAL_CREDENTIALS);
    }
    if (!IsServedNamespace(Narrow(resource))) {
        call.Unexpected("namespace " + Narrow(resource));
        return call.Hresult(WBEM_E_INVALID_NAMESPACE);
    }
    *services = MakeComObject<Services>(Machine()).HandOut(call);
    return call.Hresult(WBEM_S_NO_ERROR);
}

}  // namespace machine::wmi
