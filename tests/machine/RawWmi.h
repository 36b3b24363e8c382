// A bare WMI client that tests drive the simulated machine with, call by call, as any program
// would.
#pragma once

#include <windows.h>

#include <objbase.h>
#include <oleauto.h>
#include <wbemcli.h>

#include <optional>
#include <string>

#include "common/sys/ComPointers.h"

namespace machine::test {

using sys::Bstr;
using sys::ComPointer;
using sys::Variant;

// A connection to root\cimv2 made of the calls that every program makes.
class Connection {
public:
    Connection() {
        CoInitializeEx(nullptr, COINIT_MULTITHREADED);
        CoInitializeSecurity(nullptr, -1, nullptr, nullptr, RPC_C_AUTHN_LEVEL_CONNECT,
                             RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE, nullptr);
        CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator,
                         reinterpret_cast<void**>(locator_.Receive()));
        locator_->ConnectServer(Bstr(L"root\\cimv2").Get(), nullptr, nullptr, nullptr, 0, nullptr,
                                nullptr, services_.Receive());
    }
    ~Connection() {
        locator_.Reset();
        services_.Reset();
        CoUninitialize();
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    HRESULT Query(const wchar_t* text, ComPointer<IEnumWbemClassObject>& rows,
                  LONG flags = WBEM_FLAG_FORWARD_ONLY | WBEM_FLAG_RETURN_IMMEDIATELY) {
        return services_->ExecQuery(Bstr(L"WQL").Get(), Bstr(text).Get(), flags, nullptr,
                                    rows.Receive());
    }

    static HRESULT Next(ComPointer<IEnumWbemClassObject>& rows, ComPointer<IWbemClassObject>& row) {
        ULONG count = 1;
        const HRESULT result =
            rows->Next(static_cast<LONG>(WBEM_INFINITE), 1, row.Receive(), &count);
        return count == (result == S_OK ? 1 : 0) ? result : E_UNEXPECTED;
    }

    // Calls a method, with an in-parameter where there is one; the ReturnValue, or the code of the
    // step that failed.
    HRESULT Call(const wchar_t* className, const wchar_t* path, const wchar_t* method,
                 const wchar_t* name = nullptr, Variant value = {}) {
        ComPointer<IWbemClassObject> definition;
        ComPointer<IWbemClassObject> inDefinition;
        ComPointer<IWbemClassObject> parameters;
        ComPointer<IWbemClassObject> out;
        HRESULT result =
            services_->GetObject(Bstr(className).Get(), 0, nullptr, definition.Receive(), nullptr);
        if (SUCCEEDED(result)) {
            result = definition->GetMethod(method, 0, inDefinition.Receive(), nullptr);
        }
        if (SUCCEEDED(result) && name != nullptr) {
            inDefinition->SpawnInstance(0, parameters.Receive());
            result = parameters->Put(name, 0, &value.Get(), 0);
        }
        if (SUCCEEDED(result)) {
            result = services_->ExecMethod(Bstr(path).Get(), Bstr(method).Get(), 0, nullptr,
                                           parameters.Get(), out.Receive(), nullptr);
        }
        if (SUCCEEDED(result)) {
            out->Get(L"ReturnValue", 0, value.Receive(), nullptr, nullptr);
            result = value.Get().lVal;
        }
        return result;
    }

private:
    ComPointer<IWbemLocator> locator_;
    ComPointer<IWbemServices> services_;
};

}  // namespace machine::test
