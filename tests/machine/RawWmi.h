// A bare WMI client that tests drive the simulated machine with, call by call, as any program
// would.
#pragma once

#include <windows.h>

#include <objbase.h>
#include <oleauto.h>
#include <wbemcli.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace machine::test {

template <typename Interface>
class Held {
public:
    Held() = default;
    ~Held() { Reset(); }
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;

    Interface** Receive() {
        Reset();
        return &pointer_;
    }
    Interface* operator->() const { return pointer_; }
    Interface* Get() const { return pointer_; }
    void Reset() {
        if (pointer_ != nullptr) {
            std::exchange(pointer_, nullptr)->Release();
        }
    }

private:
    Interface* pointer_ = nullptr;
};

class Bstr {
public:
    explicit Bstr(const wchar_t* text) : text_(SysAllocString(text)) {}
    ~Bstr() { SysFreeString(text_); }
    Bstr(const Bstr&) = delete;
    Bstr& operator=(const Bstr&) = delete;
    operator BSTR() const { return text_; }

private:
    BSTR text_;
};

class Variant {
public:
    Variant() { VariantInit(&value_); }
    explicit Variant(const wchar_t* text) : Variant() {
        value_.vt = VT_BSTR;
        value_.bstrVal = SysAllocString(text);
    }
    explicit Variant(LONG number) : Variant() {
        value_.vt = VT_I4;
        value_.lVal = number;
    }
    explicit Variant(const std::vector<std::wstring>& texts) : Variant() {
        value_.vt = VT_ARRAY | VT_BSTR;
        value_.parray = SafeArrayCreateVector(VT_BSTR, 0, static_cast<ULONG>(texts.size()));
        for (LONG i = 0; i < static_cast<LONG>(texts.size()); ++i) {
            const Bstr text(texts[static_cast<std::size_t>(i)].c_str());
            SafeArrayPutElement(value_.parray, &i, static_cast<BSTR>(text));
        }
    }
    ~Variant() { VariantClear(&value_); }
    Variant(const Variant&) = delete;
    Variant& operator=(const Variant&) = delete;

    VARIANT* operator&() { return &value_; }
    const VARIANT& Value() const { return value_; }
    VARTYPE Type() const { return value_.vt; }

private:
    VARIANT value_;
};

constexpr LONG immediately = WBEM_FLAG_FORWARD_ONLY | WBEM_FLAG_RETURN_IMMEDIATELY;

constexpr LONG forever = static_cast<LONG>(WBEM_INFINITE);

// A connection to root\cimv2 made of the calls that every program makes.
class Connection {
public:
    Connection() {
        const auto step = [this](auto call) { result_ = FAILED(result_) ? result_ : call(); };
        step([&] { return CoInitializeEx(nullptr, COINIT_MULTITHREADED); });
        initialised_ = SUCCEEDED(result_);
        step([&] {
            const HRESULT result =
                CoInitializeSecurity(nullptr, -1, nullptr, nullptr, RPC_C_AUTHN_LEVEL_CONNECT,
                                     RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE, nullptr);
            return result == RPC_E_TOO_LATE ? S_OK : result;
        });
        step([&] {
            return CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER,
                                    IID_IWbemLocator, reinterpret_cast<void**>(locator_.Receive()));
        });
        step([&] {
            return locator_->ConnectServer(Bstr(L"root\\cimv2"), nullptr, nullptr, nullptr, 0,
                                           nullptr, nullptr, services_.Receive());
        });
    }
    ~Connection() {
        locator_.Reset();
        services_.Reset();
        if (initialised_) {
            CoUninitialize();
        }
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    HRESULT Result() const { return result_; }
    IWbemServices* operator->() const { return services_.Get(); }

    HRESULT Query(const wchar_t* text, Held<IEnumWbemClassObject>& rows, LONG flags = immediately) {
        return services_->ExecQuery(Bstr(L"WQL"), Bstr(text), flags, nullptr, rows.Receive());
    }

    // Calls a method with its in-parameters; the ReturnValue, or nothing when a step failed.
    std::optional<LONG> Call(const wchar_t* className, const wchar_t* path, const wchar_t* method,
                             std::vector<std::pair<const wchar_t*, VARIANT*>> in = {}) {
        Held<IWbemClassObject> definition;
        Held<IWbemClassObject> inDefinition;
        Held<IWbemClassObject> parameters;
        Held<IWbemClassObject> out;
        result_ = services_->GetObject(Bstr(className), 0, nullptr, definition.Receive(), nullptr);
        if (SUCCEEDED(result_)) {
            result_ = definition->GetMethod(method, 0, inDefinition.Receive(), nullptr);
        }
        if (SUCCEEDED(result_) && !in.empty()) {
            result_ = inDefinition->SpawnInstance(0, parameters.Receive());
        }
        for (const auto& [name, value] : in) {
            if (SUCCEEDED(result_)) {
                result_ = parameters->Put(name, 0, value, 0);
            }
        }
        if (SUCCEEDED(result_)) {
            result_ = services_->ExecMethod(Bstr(path), Bstr(method), 0, nullptr, parameters.Get(),
                                            out.Receive(), nullptr);
        }
        Variant value;
        if (SUCCEEDED(result_)) {
            result_ = out->Get(L"ReturnValue", 0, &value, nullptr, nullptr);
        }
        return SUCCEEDED(result_) ? std::optional(value.Value().lVal) : std::nullopt;
    }

private:
    HRESULT result_ = S_OK;
    bool initialised_ = false;
    Held<IWbemLocator> locator_;
    Held<IWbemServices> services_;
};

}  // namespace machine::test
