#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "machine/MachineFile.h"
#include "tests/host/configure/Support.h"

namespace {

using namespace configure_tests;
using host_tests::Outcome;
using testing::HasSubstr;
using testing::Not;

machine::State OneAdapter() {
    machine::State state;
    state.computerName = "BOX";
    state.hostName = "BOX";
    state.dnsSuffixes = {"corp.example"};
    machine::Adapter& adapter = state.adapters.emplace_back(machine::DefaultState().adapters[1]);
    adapter.index = 7;
    adapter.dhcpLease.reset();
    adapter.ipAddress = machine::TextList{"10.0.0.20"};
    adapter.gateways = machine::TextList{"10.0.0.254"};
    adapter.staticDns = {"10.0.0.1"};
    adapter.dnsServers = adapter.staticDns;
    return state;
}

constexpr const char* kOffice = R"([TCP/IP]
Description=Back office
DHCP=False
Address=10.0.0.20
Netmask=255.255.0.0
Gateway=10.0.0.254
DNS-Server-Count=2
DNS-Server0=10.0.0.1
DNS-Server1=10.0.0.2
DNS-SuffixSearchOrder=corp.example
Static-Route-Count=-1
DHCP=True
Speed=1000
[Printers]
Default=2
Duplex=yes
)";

class Report : public testing::Test {
protected:
    Outcome Run(const std::string& config, const machine::State& machine,
                const Arguments& more = {}) {
        files_.Write("site.ini", config);
        files_.Write("box.json", machine::FormatState(machine));
        return Configure(With({"site.ini", "--machine", "box.json"}, more));
    }

    Files files_;
};

TEST_F(Report, SaysOfEverySettingWhatBecomesOfItAndWhy) {
    const Outcome plan = Run(kOffice, OneAdapter(), {"--plan"});
    EXPECT_EQ(plan.exitCode, 2U);
    EXPECT_EQ(plan.notes, "");
    EXPECT_EQ(plan.data, R"(Plan for site.ini on box.json
site.ini:12:1: warning: "DHCP" stands in line 3 already: the module takes that one and ignores this
site.ini:13:1: warning: the module ignores the key "Speed"
site.ini:14:2: warning: the module ignores the section "Printers"

[TCP/IP] Back office, on PCI 3/0/0 "Ethernet 2" (index 7)
   :4 / IP addresses   has 10.0.0.20/255.255.255.0, the file wants 10.0.0.20/255.255.0.0 )"
                         R"((skipped: the module compares the first address only)
                       then waits 8 s for the adapter
   :6 = Gateways       10.0.0.254, already set
   :8 ~ DNS servers    10.0.0.1 -> 10.0.0.1, 10.0.0.2
  :10 = DNS suffixes   corp.example, already set
  :11   Static routes  left alone
  :12 x Not used       DHCP: the key stands in line 3 already, and the first one counts
  :13 x Not used       Speed: the module does not look for this key here

[Printers] 2 keys: the module does not read this section

Plan: 1 change, 2 already set, 1 skipped, 1 left alone, 3 without effect. No restart.
Next: look at the 3 findings of check (toolbox-host check site.ini --machine box.json).
)");
}

TEST_F(Report, DetailsAddTheCallsAndWhatNoSettingTells) {
    machine::State machine = OneAdapter();
    machine.adapters[0].dhcpLease =
        machine::DhcpLease{{"10.0.0.77"}, {"255.0.0.0"}, {"10.0.0.254"}, {}, ""};
    const std::string dhcp =
        "[TCP/IP]\nDescription=x\nDHCP=true\nDNS-Server-Count=0\n"
        "DNS-SuffixSearchOrder=corp.example,example\nStatic-Route-Count=-1\n";
    const std::string end = R"(Plan: 2 changes, 2 left alone. No restart.
Warning: the agent may lose its connection here: PCI 3/0/0 "Ethernet 2" (index 7): address 10.0.0.20/255.255.255.0 -> 10.0.0.77/255.0.0.0.
  --undo-file FILE writes a file that undoes it.
Next: make the changes (toolbox-host configure site.ini --machine box.json).
)";
    const std::string usual = R"([TCP/IP] x, on PCI 3/0/0 "Ethernet 2" (index 7)
  :3 ~ DHCP           off -> on
  :4   DNS servers    left alone: 10.0.0.1, set by hand, stays despite DHCP
  :5 ~ DNS suffixes   corp.example -> corp.example, example
  :6   Static routes  left alone

)";
    EXPECT_THAT(Run(dhcp, machine, {"--plan"}).data, testing::EndsWith(usual + end));
    const std::string details = Run(dhcp, machine, {"--plan", "--details"}).data;
    EXPECT_THAT(details, HasSubstr("off -> on\n                      call: EnableDHCP\n"));
    EXPECT_THAT(details, HasSubstr("What else changes on the machine:\n"
                                   "  PCI 3/0/0 \"Ethernet 2\" (index 7)\n    ~ IP addresses: "));
    EXPECT_THAT(details, Not(HasSubstr("~ DHCP: ")));
    EXPECT_THAT(details, HasSubstr("\nReply: Result=Success\n"));
    EXPECT_EQ(Run(dhcp, machine, {"--plan", "--summary"}).data, end);
    std::string blank = dhcp;
    EXPECT_THAT(Run(blank.insert(blank.find(",example") + 1, " "), machine, {"--plan"}).data,
                HasSubstr("corp.example, \" example\" fails: invalid domain name (73)"));
}

TEST_F(Report, FailuresNameTheirPlace) {
    const machine::State machine = OneAdapter();
    machine::State bare = machine;
    bare.adapters.clear();
    machine::State unaddressed = machine;
    unaddressed.adapters[0].ipAddress.reset();
    unaddressed.adapters[0].ipSubnet.reset();
    const std::string routes =
        "[NicEntry1]\nDescription=x\nDHCP=true\nDNS-Server-Count=0\nDNS-SuffixSearchOrder=a.b\n"
        "Static-Route-Count=2\nRoute0=10.1.0.0,255.255.0.0,10.0.0.9,,1,\n"
        "Route1=10.2.0.0,255.255.0.0,10.0.0.9,,1,\n";
    struct Case {
        const char* fault;
        const machine::State& machine;
        std::string config;
        const char* failed;
        const char* code;
        unsigned exitCode = 1;
    };
    const Case cases[] = {
        {"ConnectServer", machine, kOffice,
         "Failed: looking at the machine; nothing was executed\n"
         "  call: ConnectServer: 0x80041003",
         "code: -2147217405 (0x80041003), WMI: access denied"},
        {"RegQueryValueExA=5", machine, kOffice,
         "Failed: looking at the machine; nothing was executed\n"
         "  call: RegQueryValueExA \"LocationInformation\" of "
         "HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Enum\\PCI\\",
         ": error 5\n  adapter: PCI 3/0/0 \"Ethernet 2\" (index 7)\n  code: 0 (0x0)"},
        {"", unaddressed, kOffice,
         "  call: Get \"IPAddress\" of \"select IPAddress, IPSubnet from "
         "Win32_NetworkAdapterConfiguration where Index=7\": null\n"
         "  adapter: PCI 3/0/0 \"Ethernet 2\" (index 7)\n",
         "the module failed: Invalid argument passed to attach()"},
        {"LoadLibraryA", machine, "[Networking]\nDomainUsername=eravbw\nComputerName=PC7\n",
         "Failed: reading the configuration; nothing was executed\n  call: LoadLibraryA", "126"},
        {"MoveFileA=5", machine, kOffice,
         "Failed: putting the file away; every command before it was executed\n"
         "  call: MoveFileA: FALSE, error 5",
         "code: 5 (0x5)"},
        {"ExecMethod#1", machine, kOffice,
         "Failed: SetDns (adapter index 7)\n  call: ExecMethod "
         "Win32_NetworkAdapterConfiguration.Index=7.SetDNSServerSearchOrder: 0x80041001",
         "  adapter: PCI 3/0/0"},
        {"SetDNSServerSearchOrder=91", machine, kOffice,
         "Failed: SetDns (adapter index 7)\n  call: SetDNSServerSearchOrder\n",
         "  code: 91 (0x5B), access denied\n  status code of the reply: 4 (0x4)\n"
         "  done: nothing\n  not attempted: DNS suffixes (:10)\n"
         "Reply: Result=Failure, Status-Module=Win32, Status-Code=4\nNext: "},
        {"route#2=7", machine, routes,
         "Failed: SetStaticRoute\n  call: route -p ADD 10.2.0.0 mask 255.255.0.0 10.0.0.9 METRIC 1",
         "code: 7 (0x7), the program's exit code"},
        {"", bare, kOffice, "Failed: ConfigureNic\n", "no PCI adapter left"},
        {"", machine, "[TCP/IP]\nDescription=x\nDHCP=true\nDNS-Server-Count=100001\n",
         "Failed: reading the configuration", "87 (0x57), a count in the file is out of range", 65},
    };
    for (const Case& tried : cases) {
        const Arguments faults =
            *tried.fault == '\0' ? Arguments{} : Arguments{"--fail", tried.fault};
        const Outcome outcome = Run(tried.config, tried.machine, faults);
        EXPECT_EQ(outcome.exitCode, tried.exitCode) << tried.fault;
        EXPECT_THAT(outcome.data, HasSubstr(tried.failed)) << tried.fault;
        EXPECT_THAT(outcome.data, HasSubstr(tried.code)) << tried.fault;
        EXPECT_THAT(outcome.data, HasSubstr("\n  done: ")) << tried.fault;
        EXPECT_THAT(outcome.data, HasSubstr("\n  not attempted: ")) << tried.fault;
        EXPECT_EQ(outcome.notes, "") << tried.fault;
    }
}

TEST_F(Report, RoutesAreToldAsTheMachineHasThemAfterwards) {
    machine::State machine = OneAdapter();
    machine.routes = {{"10.1.0.0", "255.255.0.0", "10.0.0.9", 1}};
    const std::string office = kOffice;
    const std::string settings = office.substr(0, office.find("Static-Route-Count"));
    const std::string kept = "Route0=10.1.0.0,255.255.0.0,10.0.0.9,,1,\n";
    // The first default route, which the gateway is, does not count.
    EXPECT_THAT(Run(settings + "Static-Route-Count=1\n" + kept, machine, {"--plan"}).data,
                HasSubstr("= Static routes  10.1.0.0 mask 255.255.0.0 via 10.0.0.9 metric 1, "
                          "already set\n"));
    machine.routes.push_back({"10.1.0.0", "255.0.0.0", "10.0.0.8", 1});
    machine.routes.push_back({"0.0.0.0", "128.0.0.0", "10.0.0.8", 1});
    machine::Adapter& unplugged = machine.adapters.emplace_back(machine.adapters[0]);
    unplugged.index = 8;
    unplugged.condition = machine::Condition::kUnplugged;
    const Outcome plan = Run(settings + "Static-Route-Count=3\n" + kept +
                                 "Route1=10.2.0.0,255.255.0.0,10.0.0.9,,1,\n"
                                 "Route2=10.3.0.1,255.255.0.0,10.0.0.9,,1,\n",
                             machine, {"--plan"});
    EXPECT_THAT(plan.data, HasSubstr(R"(~ Static routes  2 to delete, 2 go along, 2 to add
                       - 0.0.0.0 mask 128.0.0.0 via 10.0.0.8 metric 1
                       - 10.1.0.0 mask 255.0.0.0 via 10.0.0.8 metric 1
                       - 0.0.0.0 mask 0.0.0.0 via 10.0.0.254 metric -1 (goes with route DELETE 0.0.0.0)
                       - 10.1.0.0 mask 255.255.0.0 via 10.0.0.9 metric 1 )"
                                     R"((goes with route DELETE 10.1.0.0; the next request adds it)
                       + 10.2.0.0 mask 255.255.0.0 via 10.0.0.9 metric 1
                       + 10.3.0.1 mask 255.255.0.0 via 10.0.0.9 metric 1 )"
                                     R"((route refuses it, and exits with 0)
)"));
    EXPECT_THAT(plan.data,
                HasSubstr("lose its connection here: PCI 3/0/0 \"Ethernet 2\" (index 7)"));
    EXPECT_THAT(plan.data, Not(HasSubstr("(index 8): gateway")));
}

TEST_F(Report, WhatIsReadAfterACommandIsNotBlamedOnIt) {
    // The query for the suffixes follows the method that sets the servers.
    Run(kOffice, OneAdapter(), {"--trace", "after.jsonl"});
    std::istringstream lines(ReadFile("after.jsonl"));
    std::size_t point = 0;
    bool methodSeen = false;
    for (std::string line; point == 0 && std::getline(lines, line);) {
        const Json call = Json::parse(line);
        methodSeen = methodSeen || call["function"] == "IWbemServices::ExecMethod";
        if (methodSeen && call["function"] == "IWbemServices::ExecQuery") {
            point = call["faultPoint"];
        }
    }
    ASSERT_NE(point, 0U);
    const Outcome run = Run(kOffice, OneAdapter(), {"--fail", "call:" + std::to_string(point)});
    EXPECT_THAT(run.data, HasSubstr("Failed: reading a current setting after SetDns"));
    EXPECT_THAT(run.data, HasSubstr("  done: DNS servers (:8)\n"
                                    "  not attempted: DNS suffixes (:10)\n"));
}

TEST_F(Report, TheRestartStoryLooksAhead) {
    machine::State machine = OneAdapter();
    machine.domains = machine::DefaultState().domains;
    const std::string join =
        "[Networking]\nDomainUsername=eravbw\nDomainPassword=6-rZ-avbW\nWorkgroup=false\n"
        "DNSDomain=corp.example\nComputerName=PC7\n";
    const Outcome run = Run(join, machine);
    EXPECT_EQ(run.exitCode, 3U);
    EXPECT_THAT(run.data,
                testing::EndsWith(R"(
  :5 > Domain         workgroup WORKGROUP -> domain corp.example )"
                                  R"((after the restart; no computer object yet: creates it)
  :6 ~ Computer name  BOX -> PC7

Run: 1 change, 1 after the restart. Restart needed.
With the restart: computer name PC7.
The file stays and is sent again: 1 change then, marked ">", and another restart.
Next: restart the machine and send the file again, or let it be done (toolbox-host configure )"
                                  R"(site.ini --machine box.json --until-done).
)"));
    // A plan looks there too, with the faults that are to come.
    for (const char* fault : {"JoinDomainOrWorkgroup=1326", "Rename=1326"}) {
        const Outcome plan = Run(join, machine, {"--plan", "--summary", "--fail", fault});
        EXPECT_EQ(plan.exitCode, 1U) << fault;
        EXPECT_THAT(plan.data, HasSubstr(": the account's name or password is wrong (1326).\n"));
        EXPECT_THAT(plan.data, testing::EndsWith("Next: fix the cause and plan again.\n"));
    }
}

TEST_F(Report, ARestartThatIsNotReportedIsToldAllTheSame) {
    const Outcome run = Run("[Global]\nRebootAfterConfig=FALSE\n[Networking]\nComputerName=PC7\n" +
                                std::string(kOffice),
                            OneAdapter());
    EXPECT_EQ(run.exitCode, 1U);
    EXPECT_THAT(run.data,
                HasSubstr("the run stopped for one, and the module calls that a failure"));
    EXPECT_THAT(run.data, HasSubstr("Restart needed but not reported."));
    EXPECT_THAT(run.data, HasSubstr("RebootAfterConfig is false: the module puts the file away"));
    EXPECT_THAT(run.data,
                HasSubstr("\nNext: restart the machine and send the file again yourself"));
    // The marker stands at the end: the adapter's settings had their turn.
    EXPECT_THAT(run.data, Not(HasSubstr("not attempted")));
}

TEST_F(Report, AConfigurationThatNeverSettlesIsFound) {
    // Each of the two adapters wants the machine's routes to be its own.
    machine::State machine = OneAdapter();
    machine.adapters[0].dhcpLease = machine::DhcpLease{{"10.0.0.20"}, {"255.0.0.0"}, {}, {}, ""};
    machine::Adapter second = machine.adapters[0];
    second.index = 8;
    second.connectionName = "Ethernet 3";
    machine.adapters.push_back(second);
    const std::string section =
        "\nDescription=x\nDHCP=true\nDNS-Server-Count=0\n"
        "DNS-SuffixSearchOrder=a.b\nStatic-Route-Count=1\nRoute0=10.";
    const Outcome run =
        Run("[NicEntry1]" + section + "1.0.0,255.255.0.0,10.0.0.9,,1,\n[NicEntry2]" + section +
                "2.0.0,255.255.0.0,10.0.0.9,,1,\n",
            machine, {"--until-done"});
    EXPECT_EQ(run.exitCode, 1U);
    EXPECT_THAT(run.data,
                HasSubstr("Never settles: another run would change the machine again.\n  again: "
                          "Static routes"));
}

TEST_F(Report, FivePassesAreEnough) {
    // The unjoin is answered and does nothing, so that every pass asks for another restart.
    machine::State member = OneAdapter();
    member.membership = machine::Membership::OfDomain("CORP", "corp.example");
    const Outcome run = Run("[Networking]\nWorkgroup=true\nDomain=LAB\n", member,
                            {"--until-done", "--fail", "JoinDomainOrWorkgroup=0"});
    EXPECT_EQ(run.exitCode, 1U);
    EXPECT_THAT(run.data, HasSubstr("\nPass 5\n"));
    EXPECT_THAT(run.data, Not(HasSubstr("\nPass 6\n")));
    EXPECT_THAT(run.data,
                HasSubstr("Does not settle: after 5 passes the module still asks for a restart."));
}

}  // namespace
