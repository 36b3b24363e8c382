// Memory that runs short inside the queries and methods: every text, list and conversion that they
// ask OLE automation for fails in turn.
#include <windows.h>

#include <gmock/gmock.h>
#include <oleauto.h>

#include <functional>
#include <string>
#include <vector>

#include "common/sys/WmiMethods.h"
#include "common/sys/WmiQueries.h"
#include "machine/Call.h"
#include "machine/ImportTable.h"
#include "tests/sys/simulated/Machine.h"

namespace {

using namespace sys_tests;
using testing::IsEmpty;

constexpr auto kOutOfMemory = static_cast<std::uint32_t>(E_OUTOFMEMORY);

const Outcome kShort = ComFailure(kOutOfMemory);

/// Which of this program's calls fails; the simulated machine's own are left out.
struct Shortage {
    int failAt = 0;
    int calls = 0;
    bool Strikes() { return machine::Serving() && ++calls == failAt; }
};

Shortage shortage;

/// The function itself, found past this program's import table.
template <class Function>
Function* Real(const char* name) {
    return reinterpret_cast<Function*>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("oleaut32.dll"), name)));
}

BSTR WINAPI AllocateText(const OLECHAR* text, UINT length) {
    static auto* const real = Real<decltype(SysAllocStringLen)>("SysAllocStringLen");
    return shortage.Strikes() ? nullptr : real(text, length);
}

SAFEARRAY* WINAPI CreateVector(VARTYPE type, LONG lowerBound, ULONG count) {
    static auto* const real = Real<decltype(SafeArrayCreateVector)>("SafeArrayCreateVector");
    return shortage.Strikes() ? nullptr : real(type, lowerBound, count);
}

HRESULT WINAPI PutElement(SAFEARRAY* array, LONG* index, void* element) {
    static auto* const real = Real<decltype(SafeArrayPutElement)>("SafeArrayPutElement");
    return shortage.Strikes() ? E_OUTOFMEMORY : real(array, index, element);
}

HRESULT WINAPI AccessData(SAFEARRAY* array, void** data) {
    static auto* const real = Real<decltype(SafeArrayAccessData)>("SafeArrayAccessData");
    return shortage.Strikes() ? E_OUTOFMEMORY : real(array, data);
}

HRESULT WINAPI ChangeType(VARIANT* target, VARIANT* source, USHORT flags, VARTYPE type) {
    static auto* const real = Real<decltype(VariantChangeType)>("VariantChangeType");
    return shortage.Strikes() ? E_OUTOFMEMORY : real(target, source, flags, type);
}

std::vector<machine::Hook> MemoryHooks() {
    return {{"SysAllocStringLen", reinterpret_cast<void*>(&AllocateText)},
            {"SafeArrayCreateVector", reinterpret_cast<void*>(&CreateVector)},
            {"SafeArrayPutElement", reinterpret_cast<void*>(&PutElement)},
            {"SafeArrayAccessData", reinterpret_cast<void*>(&AccessData)},
            {"VariantChangeType", reinterpret_cast<void*>(&ChangeType)}};
}

/// Runs the operation with its first request failing, then its second one, until none does; the
/// first one is the connection's. Returns how many there are.
int FailEachRequest(const std::function<void()>& operation, const Outcome& ofConnection,
                    const Outcome& ofLater) {
    for (int nth = 1;; ++nth) {
        SCOPED_TRACE("request " + std::to_string(nth) + " fails");
        Machine machine;
        const std::vector<machine::Hook> hooks = MemoryHooks();
        const machine::ImportTable patched(GetModuleHandleA(nullptr), hooks);
        shortage = {nth, 0};
        const Outcome outcome = machine.Run(operation);
        const bool struck = shortage.calls >= nth;
        shortage = {};
        EXPECT_THAT(machine.Leaks(), IsEmpty());
        EXPECT_EQ(machine.LostComBlocks(), 0U);
        EXPECT_EQ(outcome, !struck ? Success() : nth == 1 ? ofConnection : ofLater);
        if (!struck || testing::Test::HasFailure()) {
            return nth - 1;
        }
        EXPECT_EQ(machine->GetState(), machine::DefaultState());
    }
}

TEST(AutomationMemory, ShortInAQueryIsAComErrorThatLeavesTheOutputsAlone) {
    std::string text;
    std::vector<std::string> texts;
    std::vector<ipc::IPv4Address> addresses;
    ipc::IPv4Address address;
    ipc::IPv4Address mask;
    std::vector<sys::RouteRecord> routes;
    struct Case {
        const char* name;
        int leastRequests;
        std::function<void()> query;
        std::function<bool()> untouched;
    };
    // A connection wants one text, a query two; then there is what is read.
    const Case cases[] = {
        {"computer name", 4, [&] { sys::getComputerName(text); }, [&] { return text == "kept"; }},
        {"setting id", 4, [&] { sys::getSettingId(2, text); }, [&] { return text == "kept"; }},
        {"gateways", 4, [&] { sys::getGateways(2, addresses); }, [&] { return addresses.empty(); }},
        {"servers and suffixes", 4, [&] { sys::getDnsServersAndSuffixes(2, addresses, texts); },
         [&] { return addresses.empty() && texts.empty(); }},
        {"routes", 6, [&] { sys::getStaticRoutes(routes); }, [&] { return routes.empty(); }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const auto query = [&] {
            text = "kept";
            texts.clear();
            addresses.clear();
            routes.clear();
            try {
                c.query();
            } catch (...) {
                EXPECT_TRUE(c.untouched());
                throw;
            }
        };
        EXPECT_GE(FailEachRequest(query, kShort, kShort), c.leastRequests);
    }
}

TEST(AutomationMemory, ShortInAMethodIsTheMethodsErrorOnceItIsConnected) {
    const std::vector<ipc::IPv4Address> list(2);
    struct Case {
        const char* name;
        const char* message;
        int line;
        std::function<void()> method;
    };
    const Case cases[] = {
        {"rename", "Wmi method failed to set computer name", 1219,
         [] { sys::renameComputer("NEW", "user", "secret"); }},
        {"DHCP", "Wmi method failed to enable DHCP", 1289, [] { sys::enableDhcp(2); }},
        {"static", "Wmi method failed to set static ip addresses", 1398,
         [&] { sys::enableStatic(2, list, list); }},
        {"suffixes", "Wmi method failed to configure DNS suffixes", 1680,
         [] {
             sys::setDnsSuffixSearchOrder({"a", "b"});
         }},
        {"join", "Wmi method failed to join the domain or workgroup", 1858,
         [] { sys::joinDomainOrWorkgroup("LAB", "user", "secret", "", 0); }},
        {"unjoin", "Wmi method failed to unjoin the domain or workgroup", 2008,
         [] { sys::unjoinDomainOrWorkgroup("user", "secret", 0); }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_GE(FailEachRequest(c.method, kShort, WmiFailure(c.message, c.line, kOutOfMemory)),
                  4);
    }
}

}  // namespace
