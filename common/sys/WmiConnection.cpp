#include "common/sys/WmiConnection.h"

#include "common/err/GeneralError.h"
#include "common/sys/Automation.h"
#include "common/sys/ComError.h"
#include "common/sys/Wmi.h"
#include "common/sys/WmiValues.h"

namespace sys {

namespace {

using Microsoft::WRL::ComPtr;

/// The failure as an error, with the thread's last Windows error.
CWmiError MakeWmiError(const WmiFailure& failure, HRESULT result) {
    return {failure.message, failure.line, result, GetLastError()};
}

}  // namespace

ScopedWmiComInit::ScopedWmiComInit() : setupResult_(Connect()) {}

ScopedWmiComInit::~ScopedWmiComInit() {
    locator_.Reset();
    services_.Reset();
    CoUninitialize();
}

HRESULT ScopedWmiComInit::Connect() {
    // Made before COM is joined: what throws here must leave nothing to undo.
    const Bstr wmiNamespace(L"root\\cimv2");
    HRESULT result = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    if (FAILED(result)) {
        return result;
    }
    result = CoInitializeSecurity(nullptr, -1, nullptr, nullptr, RPC_C_AUTHN_LEVEL_CONNECT,
                                  RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE, nullptr);
    // Security is set once per process, by this module's first connection or by the agent itself.
    if (FAILED(result) && result != RPC_E_TOO_LATE) {
        return result;
    }
    result = CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER,
                              IID_PPV_ARGS(locator_.GetAddressOf()));
    if (FAILED(result)) {
        return result;
    }
    result = locator_->ConnectServer(wmiNamespace.Get(), nullptr, nullptr, nullptr, 0, nullptr,
                                     nullptr, services_.GetAddressOf());
    if (FAILED(result)) {
        return result;
    }
    return CoSetProxyBlanket(services_.Get(), RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr,
                             RPC_C_AUTHN_LEVEL_CALL, RPC_C_IMP_LEVEL_IMPERSONATE, nullptr,
                             EOAC_NONE);
}

namespace {

class ObjectRow final : public WmiRow {
public:
    explicit ObjectRow(IWbemClassObject& object) : object_(object) {}

    bool ReadText(const wchar_t* property, std::string& text) override {
        return Read(property, [&text](const VARIANT& value) {
            text = TextOf(value);
            return true;
        });
    }
    bool ReadInteger(const wchar_t* property, std::uint32_t& integer) override {
        return Read(property, [&integer](const VARIANT& value) {
            integer = IntegerOf(value);
            return true;
        });
    }
    void ReadBoolean(const wchar_t* property, bool& flag) override {
        Read(property, [&flag](const VARIANT& value) {
            flag = BooleanOf(value);
            return true;
        });
    }
    void ReadTexts(const wchar_t* property, std::vector<std::string>& texts) override {
        Read(property, [&texts](const VARIANT& value) {
            for (std::string& text : TextsOf(value)) {
                texts.push_back(std::move(text));
            }
            return true;
        });
    }
    bool ReadFirstText(const wchar_t* property, std::string& text) override {
        return Read(property, [&text](const VARIANT& value) {
            // Attached as it is: null is no empty list here.
            const SafeArrayView array(value);
            if (array.Size() > 0) {
                text = array.Text(0);
            }
            return array.Size() > 0;
        });
    }

    /// The HRESULT of the last read.
    HRESULT LastResult() const noexcept { return lastResult_; }

private:
    /// What `convert` says of the property; false where it cannot be read.
    bool Read(const wchar_t* property, const std::function<bool(const VARIANT&)>& convert) {
        Variant value;
        lastResult_ = object_.Get(property, 0, value.Receive(), nullptr, nullptr);
        return SUCCEEDED(lastResult_) && convert(value.Get());
    }

    IWbemClassObject& object_;
    HRESULT lastResult_ = S_OK;
};

Result ForEachRow(const ScopedWmiComInit& connection, const WmiQuery& query,
                  const std::string& text, WmiRows rows,
                  const std::function<void(WmiRow&)>& visit) {
    if (connection.Services() == nullptr) {
        throw MakeWmiError(query.failure, connection.SetupResult());
    }
    const Bstr language(L"WQL");
    const Bstr queryText{std::string_view(text)};
    ComPtr<IEnumWbemClassObject> enumerator;
    const HRESULT result = connection.Services()->ExecQuery(
        language.Get(), queryText.Get(), WBEM_FLAG_FORWARD_ONLY | WBEM_FLAG_RETURN_IMMEDIATELY,
        nullptr, enumerator.GetAddressOf());
    if (FAILED(result)) {
        throw MakeWmiError(query.failure, result);
    }
    for (HRESULT last = S_OK;;) {
        ComPtr<IWbemClassObject> object;
        ULONG returned = 0;
        // The query returns before it is looked at: most of what is wrong with it shows here.
        const HRESULT next =
            enumerator->Next(static_cast<LONG>(WBEM_INFINITE), 1, object.GetAddressOf(), &returned);
        if (FAILED(next)) {
            throw MakeWmiError(query.failure, next);
        }
        if (returned == 0 || object.Get() == nullptr) {
            return last;
        }
        ObjectRow row(*object.Get());
        visit(row);
        last = row.LastResult();
        if (rows == WmiRows::kFirst) {
            return last;
        }
    }
}

class ObjectParameters final : public WmiInParameters {
public:
    ObjectParameters(IWbemClassObject& object, const WmiFailure& failure)
        : object_(object), failure_(failure) {}

    void PutText(const wchar_t* name, const std::string& text) override {
        Variant value = Variant::FromText(text);
        Put(name, value);
    }
    void PutSecret(const wchar_t* name, const std::string& text) override {
        struct ErasingVariant {
            Variant value;
            ~ErasingVariant() { value.EraseText(); }
        } secret{Variant::FromText(text)};
        Put(name, secret.value);
    }
    void PutInteger(const wchar_t* name, std::int32_t value) override {
        Variant integer = Variant::FromInteger(value);
        Put(name, integer);
    }
    void PutTexts(const wchar_t* name, const std::vector<std::string>& texts) override {
        Variant value = Variant::FromTexts(texts);
        Put(name, value);
    }

private:
    void Put(const wchar_t* name, Variant& value) {
        const HRESULT result = object_.Put(name, 0, &value.Get(), 0);
        if (FAILED(result)) {
            throw MakeWmiError(failure_, result);
        }
    }

    IWbemClassObject& object_;
    const WmiFailure& failure_;
};

class MethodCall {
public:
    MethodCall(IWbemServices& services, const WmiMethod& method)
        : services_(services), method_(method) {}

    std::uint32_t Run(const std::string& objectPath,
                      const std::function<void(WmiInParameters&)>& fill) {
        ComPtr<IWbemClassObject> classDefinition;
        const Bstr className(std::wstring_view(method_.className));
        Check(services_.GetObject(className.Get(), 0, nullptr, classDefinition.GetAddressOf(),
                                  nullptr));
        ComPtr<IWbemClassObject> inDefinition;
        Check(classDefinition->GetMethod(method_.name, 0, inDefinition.GetAddressOf(), nullptr));
        ComPtr<IWbemClassObject> inParameters;
        if (fill) {
            // A class that declares no in-parameters here is not the class this module knows.
            Check(inDefinition.Get() != nullptr
                      ? inDefinition->SpawnInstance(0, inParameters.GetAddressOf())
                      : static_cast<HRESULT>(WBEM_E_INVALID_METHOD_PARAMETERS));
            ObjectParameters parameters(*inParameters.Get(), method_.failure);
            fill(parameters);
        }
        return Execute(objectPath, inParameters.Get());
    }

private:
    std::uint32_t Execute(const std::string& objectPath, IWbemClassObject* inParameters) {
        const Bstr path{std::string_view(objectPath)};
        const Bstr name(std::wstring_view(method_.name));
        ComPtr<IWbemClassObject> outParameters;
        Check(services_.ExecMethod(path.Get(), name.Get(), 0, nullptr, inParameters,
                                   outParameters.GetAddressOf(), nullptr));
        Check(outParameters.Get() != nullptr ? S_OK : static_cast<HRESULT>(WBEM_E_FAILED));
        Variant returnValue;
        Check(outParameters->Get(L"ReturnValue", 0, returnValue.Receive(), nullptr, nullptr));
        return IntegerOf(returnValue.Get());
    }

    void Check(HRESULT result) const {
        if (FAILED(result)) {
            throw MakeWmiError(method_.failure, result);
        }
    }

    IWbemServices& services_;
    const WmiMethod& method_;
};

std::uint32_t CallMethod(const ScopedWmiComInit& connection, const WmiMethod& method,
                         const std::string& objectPath,
                         const std::function<void(WmiInParameters&)>& fill) {
    if (connection.Services() == nullptr) {
        throw MakeWmiError(method.failure, connection.SetupResult());
    }
    return MethodCall(*connection.Services(), method).Run(objectPath, fill);
}

/// A text for which there is no memory is the method's failure, the connection's own text too.
template <typename Steps>
std::uint32_t AsMethod(const WmiMethod& method, const Steps& steps) {
    try {
        return steps();
    } catch (const ComError& error) {
        throw MakeWmiError(method.failure, error.Result());
    }
}

}  // namespace

Result RunWmiQuery(const WmiQuery& query, const std::string& text, WmiRows rows,
                   const std::function<void(WmiRow&)>& visit) {
    return ForEachRow(ScopedWmiComInit(), query, text, rows, visit);
}

std::uint32_t RunWmiMethod(const WmiMethod& method, const std::string& objectPath,
                           const std::function<void(WmiInParameters&)>& fill) {
    return AsMethod(method,
                    [&] { return CallMethod(ScopedWmiComInit(), method, objectPath, fill); });
}

std::uint32_t RunComputerMethod(const WmiMethod& method,
                                const std::function<void(WmiInParameters&)>& fill) {
    return AsMethod(method, [&] {
        const ScopedWmiComInit connection;
        const WmiQuery query = {kComputerNameQuery, method.failure};
        std::string name;
        const Result result = ForEachRow(connection, query, query.text, WmiRows::kFirst,
                                         [&name](WmiRow& row) { row.ReadText(L"Name", name); });
        if (FAILED(result)) {
            throw MakeWmiError(method.failure, result);
        }
        return CallMethod(connection, method, ComputerPath(name), fill);
    });
}

}  // namespace sys
