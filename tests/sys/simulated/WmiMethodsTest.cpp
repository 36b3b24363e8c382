// The methods on the simulated machine: which object they are called on, what they pass, what
// comes back, and what is reported when any of their platform calls fails.
#include "common/sys/WmiMethods.h"

#include <windows.h>

#include <gmock/gmock.h>
#include <wbemcli.h>

#include <string>
#include <vector>

#include "tests/sys/simulated/Sweep.h"

namespace {

using namespace sys_tests;

struct Method {
    const char* name;
    bool ofComputer;  // its path needs the computer's name
    const char* path;
    std::vector<const char*> in;
    const char* message;
    std::int32_t line;
    std::function<std::uint32_t()> run;
};

constexpr const char* kAdapterClass = "Win32_NetWorkAdapterConfiguration";
constexpr const char* kAdapter = "Win32_NetworkAdapterConfiguration.Index=2";
constexpr const char* kComputer = "Win32_ComputerSystem.Name=\"WORKSTATION1\"";
constexpr const char* kAccount = "corp.example\\joiner";
constexpr const char* kPutAccount = R"(UserName value="corp.example\joiner")";
constexpr const char* kPutPassword = "Password value=***";

std::vector<ipc::IPv4Address> List(const std::vector<std::string>& texts) {
    return {texts.begin(), texts.end()};
}

Method Row(const char* name, const char* path, std::vector<const char*> in, const char* message,
           std::int32_t line, std::function<std::uint32_t()> run) {
    const bool ofComputer = path == std::string(kComputer);
    return {name, ofComputer, path, std::move(in), message, line, std::move(run)};
}

std::vector<Method> Methods() {
    return {
        Row("Rename", kComputer, {R"(Name value="NEWNAME")", kPutAccount, kPutPassword},
            "Wmi method failed to set computer name", 1219,
            [] { return sys::renameComputer("NEWNAME", kAccount, "Join-Me-1"); }),
        Row("EnableDHCP", kAdapter, {}, "Wmi method failed to enable DHCP", 1289,
            [] { return sys::enableDhcp(2); }),
        Row("EnableStatic", kAdapter,
            {"IPAddress value={198.51.100.21, 198.51.100.22}",
             "SubNetMask value={255.255.255.0, 255.255.255.128}"},
            "Wmi method failed to set static ip addresses", 1398,
            [] {
                return sys::enableStatic(2, List({"198.51.100.21", "198.51.100.22"}),
                                         List({"255.255.255.0", "255.255.255.128"}));
            }),
        Row("SetGateways", kAdapter, {"DefaultIPGateway value={198.51.100.2}"},
            "Wmi method failed to set gateways", 1498,
            [] { return sys::setGateways(2, List({"198.51.100.2"})); }),
        Row("SetDNSServerSearchOrder", kAdapter, {"DNSServerSearchOrder value={}"},
            "Wmi method failed to configure DNS servers", 1591,
            [] { return sys::setDnsServerSearchOrder(2, {}); }),
        Row("SetDNSSuffixSearchOrder", kAdapterClass,
            {"DNSDomainSuffixSearchOrder value={b.example, a.example}"},
            "Wmi method failed to configure DNS suffixes", 1680,
            [] {
                return sys::setDnsSuffixSearchOrder({"b.example", "a.example"});
            }),
        // Empty texts are put as such.
        Row("JoinDomainOrWorkgroup", kComputer,
            {"Name value=\"LAB\"", "UserName value=\"\"", kPutPassword, "AccountOU value=\"\"",
             "FJoinOptions value=0"},
            "Wmi method failed to join the domain or workgroup", 1858,
            [] { return sys::joinDomainOrWorkgroup("LAB", "", "", "", 0); }),
        Row("UnjoinDomainOrWorkgroup", kComputer,
            {kPutAccount, kPutPassword, "FUnjoinOptions value=0"},
            "Wmi method failed to unjoin the domain or workgroup", 2008,
            [] { return sys::unjoinDomainOrWorkgroup(kAccount, "Join-Me-1", 0); }),
    };
}

/// A machine on which each of the calls above works.
machine::State StartOf(const Method& method) {
    return method.name == std::string("UnjoinDomainOrWorkgroup") ? MemberIn("")
                                                                 : machine::DefaultState();
}

std::vector<std::string> ExpectedCalls(const Method& method) {
    std::vector<std::string> calls = ConnectionCalls();
    const std::string name = method.name;
    if (method.ofComputer) {
        calls.insert(
            calls.end(),
            {"IWbemServices::ExecQuery query=select Name from Win32_ComputerSystem flags=48",
             "IEnumWbemClassObject::Next timeout=-1 count=1", "IWbemClassObject::Get name=Name"});
    }
    calls.push_back("IWbemServices::GetObject path=" +
                    std::string(method.ofComputer ? "Win32_ComputerSystem" : kAdapterClass));
    calls.push_back("IWbemClassObject::GetMethod name=" + name);
    if (!method.in.empty()) {
        calls.emplace_back("IWbemClassObject::SpawnInstance");
    }
    for (const char* const put : method.in) {
        calls.push_back(std::string("IWbemClassObject::Put name=") + put);
    }
    calls.push_back("IWbemServices::ExecMethod path=" + std::string(method.path) +
                    " method=" + name);
    calls.insert(calls.end(), {"IWbemClassObject::Get name=ReturnValue", "CoUninitialize"});
    return calls;
}

class WmiMethods : public testing::TestWithParam<Method> {};

TEST_P(WmiMethods, CallTheirObjectWithTheirParametersInOrder) {
    Machine machine(StartOf(GetParam()));
    std::uint32_t returned = 99;
    EXPECT_EQ(machine.Run([&] { returned = GetParam().run(); }), Success());
    EXPECT_EQ(returned, 0U);
    EXPECT_THAT(machine.Texts(), testing::ElementsAreArray(ExpectedCalls(GetParam())));
    EXPECT_NE(machine->GetState(), StartOf(GetParam())) << "the call had no effect";
}

TEST_P(WmiMethods, HandBackTheirReturnValueUnjudged) {
    for (const char* const value : {"1", "2691", "0xFFFFFFFF"}) {
        Machine machine(StartOf(GetParam()));
        machine.Fail(std::string(GetParam().name) + "=" + value);
        EXPECT_EQ(GetParam().run(), std::stoul(value, nullptr, 0));
    }
}

TEST_P(WmiMethods, ReportAnyFailingCallAsTheirError) {
    const Method& method = GetParam();
    const Operation operation = [&method](std::string& outputs) {
        outputs = "nothing";
        outputs = std::to_string(method.run());
    };
    const auto check = [&method](const FaultyRun& run) {
        std::uint32_t code = run.fault.code;
        if (run.fault.Is("CoSetProxyBlanket")) {
            if (!run.fault.stays) {
                // A connection whose last step failed is one all the same.
                EXPECT_EQ(run.outcome, Success());
                EXPECT_EQ(run.outputs, "0");
                return;
            }
            code = method.ofComputer ? WBEM_E_FAILED : WBEM_E_NOT_FOUND;
        }
        EXPECT_EQ(run.outcome, WmiFailure(method.message, method.line, code));
        EXPECT_EQ(run.outputs, "nothing");
        EXPECT_EQ(run.Calls().back().function, "CoUninitialize");
        // Only a call whose answer could not be read has had its effect.
        const bool executed = run.fault.Is("Get") && !(method.ofComputer && run.fault.ordinal == 1);
        EXPECT_EQ(run.ChangedTheMachine(), executed) << run.fault.function;
    };
    SweepOptions options;
    options.start = StartOf(method);
    Sweep(operation, check, options);
}

INSTANTIATE_TEST_SUITE_P(Each, WmiMethods, testing::ValuesIn(Methods()),
                         [](const auto& tested) { return std::string(tested.param.name); });

}  // namespace
