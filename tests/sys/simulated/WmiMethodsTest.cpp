// The 8 methods on the simulated machine: which object they are called on, what they pass, what
// comes back, and what is reported when any of their platform calls fails.
#include "common/sys/WmiMethods.h"

#include <windows.h>

#include <gmock/gmock.h>
#include <wbemcli.h>

#include <string>
#include <utility>
#include <vector>

#include "tests/sys/simulated/Machine.h"
#include "tests/sys/simulated/Sweep.h"

namespace {

using namespace sys_tests;
using testing::ElementsAreArray;
using testing::IsEmpty;

struct Method {
    const char* name;
    const char* className;
    std::string path;
    std::vector<std::pair<const char*, const char*>> in;
    const char* message;
    std::int32_t line;
    bool ofComputer;  // its path needs the computer's name
    std::function<std::uint32_t()> run;
};

constexpr const char* kAdapterClass = "Win32_NetWorkAdapterConfiguration";
constexpr const char* kAdapterPath = "Win32_NetworkAdapterConfiguration.Index=2";
constexpr const char* kComputerClass = "Win32_ComputerSystem";
constexpr const char* kComputerPath = "Win32_ComputerSystem.Name=\"WORKSTATION1\"";

std::vector<ipc::IPv4Address> List(const std::vector<std::string>& texts) {
    return {texts.begin(), texts.end()};
}

std::vector<Method> Methods() {
    return {
        {"Rename",
         kComputerClass,
         kComputerPath,
         {{"Name", R"("NEWNAME")"}, {"UserName", R"("corp.example\joiner")"}, {"Password", "***"}},
         "Wmi method failed to set computer name",
         1219,
         true,
         [] { return sys::renameComputer("NEWNAME", "corp.example\\joiner", "Join-Me-1"); }},
        {"EnableDHCP",
         kAdapterClass,
         kAdapterPath,
         {},
         "Wmi method failed to enable DHCP",
         1289,
         false,
         [] { return sys::enableDhcp(2); }},
        {"EnableStatic",
         kAdapterClass,
         kAdapterPath,
         {{"IPAddress", "{198.51.100.21, 198.51.100.22}"},
          {"SubNetMask", "{255.255.255.0, 255.255.255.128}"}},
         "Wmi method failed to set static ip addresses",
         1398,
         false,
         [] {
             return sys::enableStatic(2, List({"198.51.100.21", "198.51.100.22"}),
                                      List({"255.255.255.0", "255.255.255.128"}));
         }},
        {"SetGateways",
         kAdapterClass,
         kAdapterPath,
         {{"DefaultIPGateway", "{198.51.100.2}"}},
         "Wmi method failed to set gateways",
         1498,
         false,
         [] { return sys::setGateways(2, List({"198.51.100.2"})); }},
        {"SetDNSServerSearchOrder",
         kAdapterClass,
         kAdapterPath,
         {{"DNSServerSearchOrder", "{198.51.100.53, 198.51.100.54}"}},
         "Wmi method failed to configure DNS servers",
         1591,
         false,
         [] {
             return sys::setDnsServerSearchOrder(2, List({"198.51.100.53", "198.51.100.54"}));
         }},
        {"SetDNSSuffixSearchOrder",
         kAdapterClass,
         kAdapterClass,
         {{"DNSDomainSuffixSearchOrder", "{b.example, a.example}"}},
         "Wmi method failed to configure DNS suffixes",
         1680,
         false,
         [] {
             return sys::setDnsSuffixSearchOrder({"b.example", "a.example"});
         }},
        {"JoinDomainOrWorkgroup",
         kComputerClass,
         kComputerPath,
         {{"Name", R"("corp.example")"},
          {"UserName", R"("corp.example\joiner")"},
          {"Password", "***"},
          {"AccountOU", R"("OU=Sales,OU=East,DC=corp,DC=example")"},
          {"FJoinOptions", "3"}},
         "Wmi method failed to join the domain or workgroup",
         1858,
         true,
         [] {
             return sys::joinDomainOrWorkgroup("corp.example", "corp.example\\joiner", "Join-Me-1",
                                               "OU=Sales,OU=East,DC=corp,DC=example", 3);
         }},
        {"UnjoinDomainOrWorkgroup",
         kComputerClass,
         kComputerPath,
         {{"UserName", R"("corp.example\joiner")"}, {"Password", "***"}, {"FUnjoinOptions", "0"}},
         "Wmi method failed to unjoin the domain or workgroup",
         2008,
         true,
         [] { return sys::unjoinDomainOrWorkgroup("corp.example\\joiner", "Join-Me-1", 0); }},
    };
}

/// A machine on which each of the calls above works.
machine::State StartOf(const Method& method) {
    machine::State state = machine::DefaultState();
    if (method.name == std::string("UnjoinDomainOrWorkgroup")) {
        state.membership = machine::Membership::OfDomain("CORP", "corp.example");
        state.domains[0].computers.push_back("WORKSTATION1");
    }
    return state;
}

std::vector<std::string> ExpectedCalls(const Method& method) {
    std::vector<std::string> calls = ConnectionCalls();
    if (method.ofComputer) {
        calls.insert(
            calls.end(),
            {"IWbemServices::ExecQuery query=select Name from Win32_ComputerSystem "
             "flags=48",
             "IEnumWbemClassObject::Next timeout=-1 count=1", "IWbemClassObject::Get name=Name"});
    }
    calls.push_back(std::string("IWbemServices::GetObject path=") + method.className);
    calls.push_back(std::string("IWbemClassObject::GetMethod name=") + method.name);
    if (!method.in.empty()) {
        calls.emplace_back("IWbemClassObject::SpawnInstance");
    }
    for (const auto& [name, value] : method.in) {
        calls.push_back(std::string("IWbemClassObject::Put name=") + name + " value=" + value);
    }
    calls.push_back("IWbemServices::ExecMethod path=" + method.path + " method=" + method.name);
    calls.push_back("IWbemClassObject::Get name=ReturnValue");
    calls.push_back("CoUninitialize");
    return calls;
}

TEST(WmiMethods, CallTheirObjectWithTheirParametersInOrder) {
    for (const Method& method : Methods()) {
        SCOPED_TRACE(method.name);
        Machine machine(StartOf(method));
        std::uint32_t returned = 99;
        EXPECT_EQ(machine.Run([&] { returned = method.run(); }), Success());
        EXPECT_EQ(returned, 0U);

        EXPECT_THAT(machine.Calls(), ElementsAreArray(ExpectedCalls(method)));
        EXPECT_THAT(machine.Leaks(), IsEmpty());
        EXPECT_EQ(machine.LostComBlocks(), 0U);
        EXPECT_THAT(machine->Unexpected(), IsEmpty());
        EXPECT_NE(machine->GetState(), StartOf(method)) << "the call had no effect";
    }
}

TEST(WmiMethods, ReturnValuesAreHandedBackUnjudged) {
    for (const Method& method : Methods()) {
        for (const char* const value : {"0", "1", "84", "2691", "0x80070005", "0xFFFFFFFF"}) {
            SCOPED_TRACE(std::string(method.name) + " returns " + value);
            Machine machine(StartOf(method));
            machine.Fail(std::string(method.name) + "=" + value);
            std::uint32_t returned = 99;
            EXPECT_EQ(machine.Run([&] { returned = method.run(); }), Success());
            EXPECT_EQ(returned, static_cast<std::uint32_t>(std::stoul(value, nullptr, 0)));
            EXPECT_THAT(machine.Leaks(), IsEmpty());
        }
    }
}

TEST(WmiMethods, AnyFailingCallIsTheMethodsError) {
    for (const Method& method : Methods()) {
        SCOPED_TRACE(method.name);
        const Operation operation = [&method](std::string& outputs) {
            outputs = "nothing";
            outputs = std::to_string(method.run());
        };
        const auto check = [&method](const FaultyRun& run) {
            if (run.fault.Is("CoSetProxyBlanket") && !run.fault.stays) {
                // A connection whose last step failed is one all the same.
                EXPECT_EQ(run.outcome, Success());
                EXPECT_EQ(run.outputs, "0");
                return;
            }
            std::uint32_t code = run.fault.code;
            if (run.fault.Is("CoSetProxyBlanket")) {
                code = method.ofComputer ? WBEM_E_FAILED : WBEM_E_NOT_FOUND;
            }
            EXPECT_EQ(run.outcome, WmiFailure(method.message, method.line, code));
            EXPECT_EQ(run.outputs, "nothing");
            // Only a call whose answer could not be read has had its effect.
            EXPECT_EQ(run.machine.CallNames().back(), "CoUninitialize");
            const bool executed =
                run.fault.Is("Get") && !(method.ofComputer && run.fault.ordinal == 1);
            EXPECT_EQ(run.machine->GetState() != run.start, executed) << run.fault.function;
        };
        SweepOptions options;
        options.start = StartOf(method);
        Sweep(operation, check, options);
    }
}

TEST(WmiMethods, ErrorsOfTheMachineArriveWithTheirOwnCode) {
    Machine machine;
    EXPECT_EQ(machine.Run([] { sys::enableDhcp(99); }),
              WmiFailure("Wmi method failed to enable DHCP", 1289, WBEM_E_NOT_FOUND));
    machine.Fail("GetMethod=0x80041003");
    EXPECT_EQ(machine.Run([] { sys::setGateways(1, {}); }),
              WmiFailure("Wmi method failed to set gateways", 1498, WBEM_E_ACCESS_DENIED));
    EXPECT_THAT(machine.Leaks(), IsEmpty());
}

TEST(WmiMethods, EmptyListsAndTextsArePutAsSuch) {
    Machine machine;
    EXPECT_EQ(machine.Run([] { sys::setDnsServerSearchOrder(2, {}); }), Success());
    EXPECT_THAT(machine.Calls("Put"),
                testing::ElementsAre("IWbemClassObject::Put name=DNSServerSearchOrder value={}"));
    EXPECT_EQ(machine.Run([] { sys::joinDomainOrWorkgroup("LAB", "", "", "", -1); }), Success());
    EXPECT_THAT(machine.Calls("Put"),
                testing::ElementsAre("IWbemClassObject::Put name=Name value=\"LAB\"",
                                     "IWbemClassObject::Put name=UserName value=\"\"",
                                     "IWbemClassObject::Put name=Password value=***",
                                     "IWbemClassObject::Put name=AccountOU value=\"\"",
                                     "IWbemClassObject::Put name=FJoinOptions value=-1"));
}

}  // namespace
