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
    Held(Held&& other) noexcept : pointer_(std::exchange(other.pointer_, nullptr)) {}
    Held& operator=(Held&& other) noexcept {
        std::swap(pointer_, other.pointer_);
        return *this;
    }

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
    std::wstring Text() const { return value_.vt == VT_BSTR ? value_.bstrVal : L"(no text)"; }
    std::vector<std::wstring> Texts() const {
        std::vector<std::wstring> texts;
        LONG last = -1;
        if (value_.vt == (VT_ARRAY | VT_BSTR)) {
            SafeArrayGetUBound(value_.parray, 1, &last);
        }
        for (LONG i = 0; i <= last; ++i) {
            BSTR text = nullptr;
            SafeArrayGetElement(value_.parray, &i, &text);
            texts.emplace_back(text);
            SysFreeString(text);
        }
        return texts;
    }

private:
    VARIANT value_;
};

constexpr LONG immediately = WBEM_FLAG_FORWARD_ONLY | WBEM_FLAG_RETURN_IMMEDIATELY;

constexpr LONG forever = static_cast<LONG>(WBEM_INFINITE);

// A connection to root\cimv2 made of the five calls that every program makes.
class Connection {
public:
    Connection() {
        result_ = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
        initialised_ = SUCCEEDED(result_);
        if (FAILED(result_)) {
            return;
        }
        result_ = CoInitializeSecurity(nullptr, -1, nullptr, nullptr, RPC_C_AUTHN_LEVEL_CONNECT,
                                       RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE, nullptr);
        if (FAILED(result_) && result_ != RPC_E_TOO_LATE) {
            return;
        }
        result_ = CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER,
                                   IID_IWbemLocator, reinterpret_cast<void**>(locator_.Receive()));
        if (FAILED(result_)) {
            return;
        }
        result_ = locator_->ConnectServer(Bstr(L"root\\cimv2"), nullptr, nullptr, nullptr, 0,
                                          nullptr, nullptr, services_.Receive());
        if (FAILED(result_)) {
            return;
        }
        result_ = CoSetProxyBlanket(services_.Get(), RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr,
                                    RPC_C_AUTHN_LEVEL_CALL, RPC_C_IMP_LEVEL_IMPERSONATE, nullptr,
                                    EOAC_NONE);
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
        if (FAILED(result_)) {
            return std::nullopt;
        }
        result_ = definition->GetMethod(method, 0, inDefinition.Receive(), nullptr);
        if (FAILED(result_)) {
            return std::nullopt;
        }
        if (!in.empty()) {
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
