// Memory that runs short inside the queries and methods: every text, list and conversion that they
// ask OLE automation for fails in turn.
#include <windows.h>

#include <gtest/gtest.h>
#include <oleauto.h>

#include <functional>
#include <string>
#include <vector>

#include "common/sys/WmiMethods.h"
#include "common/sys/WmiQueries.h"
#include "machine/Call.h"
#include "machine/ImportTable.h"
#include "tests/common/sys/Machine.h"

namespace {

using namespace sys_tests;

constexpr auto kCode = static_cast<std::uint32_t>(E_OUTOFMEMORY);
const Outcome kShort = ComFailure(kCode);

/// Which of this program's calls fails; the simulated machine's own are left out.
struct Shortage {
    int failAt = 0;
    int calls = 0;
    bool Strikes() { return machine::ServingCore() && ++calls == failAt; }
};

Shortage shortage;

/// Stands before a function of OLE automation, which it finds past this program's import table.
template <const char* kName, class Function>
struct Failing;

template <const char* kName, class Result, class... Argument>
struct Failing<kName, Result WINAPI(Argument...)> {
    static Result WINAPI Call(Argument... arguments) {
        static auto* const kReal = reinterpret_cast<Result(WINAPI*)(Argument...)>(
            reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("oleaut32.dll"), kName)));
        if (!shortage.Strikes()) {
            return kReal(arguments...);
        }
        if constexpr (std::is_pointer_v<Result>) {
            return nullptr;
        } else {
            return E_OUTOFMEMORY;
        }
    }
    static machine::Hook Hook() { return {kName, reinterpret_cast<void*>(&Call)}; }
};

constexpr char kText[] = "SysAllocStringLen";
constexpr char kList[] = "SafeArrayCreateVector";
constexpr char kElement[] = "SafeArrayPutElement";
constexpr char kAccess[] = "SafeArrayAccessData";
constexpr char kConversion[] = "VariantChangeType";

std::vector<machine::Hook> MemoryHooks() {
    return {Failing<kText, decltype(SysAllocStringLen)>::Hook(),
            Failing<kList, decltype(SafeArrayCreateVector)>::Hook(),
            Failing<kElement, decltype(SafeArrayPutElement)>::Hook(),
            Failing<kAccess, decltype(SafeArrayAccessData)>::Hook(),
            Failing<kConversion, decltype(VariantChangeType)>::Hook()};
}

/// Runs the operation with its first request failing, then its second one, until none does; the
/// first one is the connection's. Returns how many there are.
int FailEachRequest(const std::function<void()>& operation, const Outcome& failure = kShort) {
    for (int nth = 1;; ++nth) {
        SCOPED_TRACE("request " + std::to_string(nth) + " fails");
        Machine machine;
        const std::vector<machine::Hook> hooks = MemoryHooks();
        const machine::ImportTable patched(GetModuleHandleA(nullptr), hooks);
        shortage = {nth, 0};
        const Outcome outcome = machine.Run(operation);
        const bool struck = shortage.calls >= nth;
        shortage = {};
        EXPECT_EQ(outcome, struck ? failure : Success());
        if (!struck || testing::Test::HasFailure()) {
            return nth - 1;
        }
        EXPECT_EQ(machine->GetState(), machine::DefaultState());
    }
}

TEST(AutomationMemory, ShortInAQueryIsAComErrorThatLeavesTheOutputsAlone) {
    std::vector<std::string> texts;
    std::vector<ipc::IPv4Address> addresses;
    std::vector<sys::RouteRecord> routes;
    // A connection wants one text, a query two; then there is what is read.
    const int inLists = FailEachRequest([&] {
        EXPECT_TRUE(addresses.empty() && texts.empty());
        sys::getDnsServersAndSuffixes(7, addresses, texts);
    });
    EXPECT_GE(inLists, 4);
    const int inRows = FailEachRequest([&] {
        EXPECT_LE(routes.size(), 1U) << "the row that fails is no route; the one before it is";
        routes.clear();
        sys::getStaticRoutes(routes);
    });
    EXPECT_GE(inRows, 6);
}

TEST(AutomationMemory, ShortInAMethodIsTheMethodsError) {
    const std::vector<ipc::IPv4Address> list(2);
    const int inLists =
        FailEachRequest([&] { sys::enableStatic(2, list, list); },
                        WmiFailure("Wmi method failed to set static ip addresses", 1398, kCode));
    EXPECT_GE(inLists, 4);
    const int inTexts = FailEachRequest(
        [] { sys::joinDomainOrWorkgroup("LAB", "user", "secret", "", 0); },
        WmiFailure("Wmi method failed to join the domain or workgroup", 1858, kCode));
    EXPECT_GE(inTexts, 4);
}

}  // namespace
