// A bare WMI client that tests query the simulated machine with, as any program would.
#pragma once

#include <windows.h>

#include <objbase.h>
#include <oleauto.h>
#include <wbemcli.h>
#include <wrl/client.h>

#include "common/sys/Automation.h"

namespace machine::test {

using Microsoft::WRL::ComPtr;
using sys::Bstr;
using sys::Variant;

// A connection to root\cimv2 made of the calls that every program makes.
class Connection {
public:
    Connection() {
        CoInitializeEx(nullptr, COINIT_MULTITHREADED);
        CoInitializeSecurity(nullptr, -1, nullptr, nullptr, RPC_C_AUTHN_LEVEL_CONNECT,
                             RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE, nullptr);
        CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER,
                         IID_PPV_ARGS(locator_.GetAddressOf()));
        locator_->ConnectServer(Bstr(L"root\\cimv2").Get(), nullptr, nullptr, nullptr, 0, nullptr,
                                nullptr, services_.GetAddressOf());
    }
    ~Connection() {
        locator_.Reset();
        services_.Reset();
        CoUninitialize();
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    HRESULT Query(const wchar_t* text, ComPtr<IEnumWbemClassObject>& rows,
                  LONG flags = WBEM_FLAG_FORWARD_ONLY | WBEM_FLAG_RETURN_IMMEDIATELY) {
        return services_->ExecQuery(Bstr(L"WQL").Get(), Bstr(text).Get(), flags, nullptr,
                                    rows.ReleaseAndGetAddressOf());
    }

    static HRESULT Next(ComPtr<IEnumWbemClassObject>& rows, ComPtr<IWbemClassObject>& row) {
        ULONG count = 1;
        const HRESULT result =
            rows->Next(static_cast<LONG>(WBEM_INFINITE), 1, row.ReleaseAndGetAddressOf(), &count);
        return count == (result == S_OK ? 1 : 0) ? result : E_UNEXPECTED;
    }

private:
    ComPtr<IWbemLocator> locator_;
    ComPtr<IWbemServices> services_;
};

}  // namespace machine::test
