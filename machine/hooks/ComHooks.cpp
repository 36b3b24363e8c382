// COM's start, end, security and object creation.
#include <windows.h>

#include <objbase.h>
#include <wbemcli.h>

#include "machine/Call.h"
#include "machine/Text.h"
#include "machine/hooks/Hooks.h"
#include "machine/wmi/Services.h"

namespace machine {
namespace {

constexpr std::string_view kInitialisation = "COM initialisation";

HRESULT Initialise(Call& call, bool multithreaded) {
    Apartment& apartment = call->apartments[GetCurrentThreadId()];
    if (apartment.initialisations != 0 && apartment.multithreaded != multithreaded) {
        return call.Hresult(RPC_E_CHANGED_MODE);
    }
    const bool isFirst = apartment.initialisations++ == 0;
    apartment.multithreaded = multithreaded;
    call->ledger.HandOut(kInitialisation, GetCurrentThreadId(), call.Origin());
    return call.Hresult(isFirst ? S_OK : S_FALSE);
}

HRESULT ServeCoInitialize(Core& core, LPVOID reserved) {
    Call call(core, "CoInitialize");
    if (const auto fault = call.Fault()) {
        ++call->apartments[GetCurrentThreadId()].refusals;
        return call.Hresult(*fault);
    }
    if (reserved != nullptr) {
        return call.Hresult(E_INVALIDARG);
    }
    return Initialise(call, false);
}

HRESULT ServeCoInitializeEx(Core& core, LPVOID reserved, DWORD mode) {
    Call call(core, "CoInitializeEx", {{"mode", Hex(mode)}});
    if (const auto fault = call.Fault()) {
        ++call->apartments[GetCurrentThreadId()].refusals;
        return call.Hresult(*fault);
    }
    if (reserved != nullptr) {
        return call.Hresult(E_INVALIDARG);
    }
    return Initialise(call, (mode & COINIT_APARTMENTTHREADED) == 0);
}

void ServeCoUninitialize(Core& core) {
    Call call(core, "CoUninitialize", {}, Failing::kNever);
    const auto found = call->apartments.find(GetCurrentThreadId());
    if (found == call->apartments.end()) {
        call->ledger.RecordMisuse(call.Origin() + ": COM is not initialised on this thread");
        return;
    }
    Apartment& apartment = found->second;
    if (apartment.initialisations != 0) {
        --apartment.initialisations;
        call->ledger.TakeBack(kInitialisation, GetCurrentThreadId());
    } else {
        // The answer to an initialisation that the plan refused: Windows ignores it too.
        --apartment.refusals;
    }
    if (apartment.initialisations == 0 && apartment.refusals == 0) {
        call->apartments.erase(found);
    }
}

HRESULT ServeCoInitializeSecurity(Core& core, PSECURITY_DESCRIPTOR, LONG,
                                  SOLE_AUTHENTICATION_SERVICE*, void*, DWORD authenticationLevel,
                                  DWORD impersonationLevel, void*, DWORD capabilities, void*) {
    Call call(core, "CoInitializeSecurity",
              {{"authentication level", std::to_string(authenticationLevel)},
               {"impersonation level", std::to_string(impersonationLevel)},
               {"capabilities", Hex(capabilities)}});
    if (const auto fault = call.Fault()) {
        return call.Hresult(*fault);
    }
    if (!call->ComIsInitialised()) {
        return call.Hresult(CO_E_NOTINITIALIZED);
    }
    // Security is set once for a process; whoever comes second is told so.
    if (call->comSecuritySet) {
        return call.Hresult(RPC_E_TOO_LATE);
    }
    call->comSecuritySet = true;
    return call.Hresult(S_OK);
}

HRESULT ServeCoCreateInstance(Core& core, REFCLSID wantedClass, LPUNKNOWN outer, DWORD context,
                              REFIID wanted, LPVOID* object) {
    Call call(core, "CoCreateInstance", {{"context", Hex(context)}});
    if (object != nullptr) {
        *object = nullptr;
    }
    if (const auto fault = call.Fault()) {
        return call.Hresult(*fault);
    }
    if (object == nullptr) {
        return call.Hresult(E_POINTER);
    }
    if (!call->ComIsInitialised()) {
        return call.Hresult(CO_E_NOTINITIALIZED);
    }
    if (!IsEqualCLSID(wantedClass, CLSID_WbemLocator)) {
        call.Unexpected("a class other than the WBEM locator");
        return call.Hresult(REGDB_E_CLASSNOTREG);
    }
    if (outer != nullptr) {
        return call.Hresult(CLASS_E_NOAGGREGATION);
    }
    if ((context & CLSCTX_INPROC_SERVER) == 0) {
        call.Unexpected("the WBEM locator lives in process only");
        return call.Hresult(REGDB_E_CLASSNOTREG);
    }
    if (!IsEqualIID(wanted, IID_IWbemLocator)) {
        call.Unexpected("an interface that the WBEM locator does not have");
        return call.Hresult(E_NOINTERFACE);
    }
    *object = MakeComObject<wmi::Locator>(call.Machine()).HandOut(call);
    return call.Hresult(S_OK);
}

HRESULT ServeCoSetProxyBlanket(Core& core, IUnknown* proxy, DWORD authentication,
                               DWORD authorisation, OLECHAR*, DWORD authenticationLevel,
                               DWORD impersonationLevel, RPC_AUTH_IDENTITY_HANDLE,
                               DWORD capabilities) {
    Call call(core, "CoSetProxyBlanket",
              {{"authentication", std::to_string(authentication)},
               {"authorisation", std::to_string(authorisation)},
               {"authentication level", std::to_string(authenticationLevel)},
               {"impersonation level", std::to_string(impersonationLevel)},
               {"capabilities", Hex(capabilities)}});
    if (const auto fault = call.Fault()) {
        return call.Hresult(*fault);
    }
    if (FindComObject<wmi::Services>(call.Machine(), proxy) == nullptr) {
        call.Unexpected("security is set on something that is no proxy of WMI");
        return call.Hresult(E_INVALIDARG);
    }
    return call.Hresult(S_OK);
}

}  // namespace

void AddComHooks(Hooks& hooks) {
    hooks.push_back(MakeHook<&ServeCoCreateInstance>("CoCreateInstance"));
    hooks.push_back(MakeHook<&ServeCoInitialize>("CoInitialize"));
    hooks.push_back(MakeHook<&ServeCoInitializeEx>("CoInitializeEx"));
    hooks.push_back(MakeHook<&ServeCoInitializeSecurity>("CoInitializeSecurity"));
    hooks.push_back(MakeHook<&ServeCoSetProxyBlanket>("CoSetProxyBlanket"));
    hooks.push_back(MakeHook<&ServeCoUninitialize>("CoUninitialize"));
}

}  // namespace machine
