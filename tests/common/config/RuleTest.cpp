#include "common/config/BuilderRule.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "common/config/Event.h"
#include "common/config/command/JoinWorkgroup.h"
#include "common/err/GeneralError.h"
#include "tests/common/config/EventWords.h"
#include "tests/native/OnMachine.h"

namespace {

using native::Joining;
using native::JoiningGroup;
using native::OnMachine;
using native::Renaming;

struct RuleCase {
    std::string events;
    std::string commands;  // or the error that the events end with
};

class Rules : public OnMachine {
protected:
    static std::string CommandsOf(const std::string& events) {
        logging::NullLogSink log;
        config::ConfigBuilder builder(log);
        try {
            config_tests::Send(builder, events);
        } catch (...) {
            return native::ErrorText();
        }
        return native::TextOf(builder.Commands());
    }

    static void ExpectCommands(const std::vector<RuleCase>& cases) {
        for (const RuleCase& test : cases) {
            EXPECT_EQ(CommandsOf(test.events), test.commands) << test.events;
        }
    }

    /// The same for the events of one adapter that is to be found by its place in the tree.
    static void ExpectNicCommands(const std::vector<RuleCase>& cases) {
        for (const RuleCase& test : cases) {
            EXPECT_EQ(CommandsOf("+NIC(lan) " + test.events),
                      test.commands.starts_with("common\\")
                          ? test.commands
                          : "ConfigureNic n/n/n index n {" + test.commands + "}")
                << test.events;
        }
    }
};

const std::string kDefaultError =
    "common\\config\\BuilderRule:203(1) Invalid config event being handled by Default scope";
const std::string kNicError =
    "common\\config\\BuilderRule:312(1) Invalid config event being handled by NIC scope";
const std::string kIpError =
    "common\\config\\BuilderRule:361(1) Invalid config event being handled by IpInterface scope";
const std::string kRouteError =
    "common\\config\\BuilderRule:444(1) Invalid config event being handled by IpInterface scope";
const std::string kGatewayError =
    "common\\config\\BuilderRule:222(1) Attempting to configure a DHCP nic with static information";
const std::string kNotStaticError =
    "common\\config\\BuilderRule:347(0) IpInterface being called without a previous event to set "
    "the NIC as static";
const std::string kEndError =
    "common\\config\\ConfigBuilder:86(1) Event::END scope called with no matching Event::BEGIN";
const std::string kValueError =
    "common\\config\\ConfigBuilder:97(1) Event::VALUE called with no matching Event::BEGIN";
const std::string kHostError =
    "common\\ipc\\IpAddress:159(11001) IPAddress::Connect Name Resolution Error";

TEST_F(Rules, EachScopeAcceptsItsKindsAndNoOther) {
    struct ScopeCase {
        std::string open;
        std::set<std::uint32_t> accepted;
        std::string error;
    };
    const ScopeCase cases[] = {
        {"", {0, 1, 2, 3, 4, 5, 19}, kDefaultError},
        {"+NIC(x) STATIC ", {7, 8, 12, 13, 14, 21, 22, 23}, kNicError},
        {"+NIC(x) STATIC +IP ", {10, 11}, kIpError},
        {"+ROUTE ", {10, 11, 12, 16, 17, 18}, kRouteError},
    };
    constexpr std::uint32_t kUnused[] = {20, 24, 255, 0xFFFFFFFF};
    std::vector<std::uint32_t> kinds(std::begin(kUnused), std::end(kUnused));
    for (std::uint32_t kind = 0; kind < 24; ++kind) {
        kinds.push_back(kind);
    }
    for (const ScopeCase& test : cases) {
        for (const std::uint32_t kind : kinds) {
            const std::string word = "#" + std::to_string(kind) + "(1.2.3.4)";
            const std::string commands = CommandsOf(test.open + word);
            EXPECT_EQ(commands.starts_with("common\\"), !test.accepted.contains(kind))
                << test.open << word << ": " << commands;
            if (!test.accepted.contains(kind)) {
                EXPECT_EQ(commands, test.error) << test.open << word;
            }
            if (kind != 6 && kind != 9 && kind != 15) {  // beginning any other is its value
                EXPECT_EQ(CommandsOf(test.open + "+" + word), commands) << test.open << word;
            }
        }
    }
}

// What files bring about is seen where the module runs; here is what only other senders could.
TEST_F(Rules, DefaultScope) {
    ExpectCommands({
        {"", ""},
        {"DOMAIN(d.e) OU(East) OU(West)", Joining("d.e", "d.e\\", "", "OU=West,DC=d,DC=e", 1)},
        {"DOMAIN(a) WORKGROUP(b) OU(c)",
         Joining("a", "a\\", "", "", 1) + "; " + JoiningGroup("b") + "; MoveOu"},
        {"USER(joe) PASSWORD(p) NAME(PC9)", Renaming("PC9")},
        {"NAME(PC9) +ROUTE - USER(joe) PASSWORD(p)", Renaming("PC9") + "; SetStaticRoute"},
    });
    MakeMember();
    ExpectCommands({{"DOMAIN(Corp.EXAMPLE)", ""}});
    // The names of the domain that it has left do not count.
    machine.state.membership = machine::Membership::OfWorkgroup("WORKGROUP");
    ExpectCommands({{"DOMAIN(CORP)", Joining("CORP", "CORP\\", "", "", 1)}});
}

TEST_F(Rules, NicScope) {
    ExpectNicCommands({
        {"STATIC GW(10.0.0.1) GW(10.0.0.1) GW(10.0.0.3)",
         "SetStatic threw SetStatic:62(2) Static IP addresses/masks list empty; SetGateways 5 "
         "{10.0.0.1, 10.0.0.1, 10.0.0.3}"},
        {"GW(10.0.0.1)", kGatewayError},
        {"STATIC DHCP GW(10.0.0.1)", kGatewayError},
        {"DHCP STATIC +IP ADDRESS(1.2.3.4) MASK(255.0.0.0) - GW(10.0.0.1)",
         "EnableDHCP 5; EnableStatic 5 {1.2.3.4}, {255.0.0.0}; SetGateways 5 {10.0.0.1}"},
        {"DNS(10.0.0.1) DNS(10.0.0.2) SUFFIX(a.b) SUFFIX(C.d) DNS(10.0.0.3)",
         "SetDNSServerSearchOrder 5 {10.0.0.1, 10.0.0.2}; SetDNSSuffixSearchOrder {a.b, C.d}; "
         "SetDNSServerSearchOrder 5 {10.0.0.3}"},
        {"DNS( 0.0.0.0) DNS()", "SetDNSServerSearchOrder 5 {255.255.255.255, 255.255.255.255}"},
    });
    ExpectCommands({
        {"+NIC(x) BUS(2) DEVICE(31) FUNCTION(7)", "ConfigureNic 2/31/7 index n {}"},
        {"+NIC(x) BUS(0x10) DEVICE(12x) FUNCTION(-1)", "ConfigureNic 0/12/n index n {}"},
        {"+NIC(x) BUS(1) - +NIC(y) BUS(2) DHCP -",
         "ConfigureNic 1/n/n index n {}; ConfigureNic 2/n/n index n {EnableDHCP 5}"},
    });
}

TEST_F(Rules, NicScopeNeedsItsCommandLast) {
    logging::NullLogSink log;
    config::ConfigBuilder builder(log);
    for (int commands = 0; commands < 2; ++commands) {
        std::string error;
        try {
            const config::NicRule rule(builder);
        } catch (...) {
            error = native::ErrorText();
        }
        EXPECT_EQ(error, "common\\config\\BuilderRule:216(0) Configure commands are corrupted");
        builder.AppendCommand(
            std::make_unique<config::command::JoinWorkgroup>(builder.Domain(), "SALES"));
    }
}

TEST_F(Rules, IpInterfaceScope) {
    machine.state.hosts = {{"pc.example", {"10.9.9.9"}}, {"none.example", {}}};
    ExpectNicCommands({
        {"STATIC +IP ADDRESS(pc.example) ADDRESS(none.example) MASK(x.y)", kHostError},
        {"STATIC +IP ADDRESS(pc.example) ADDRESS(none.example) MASK() MASK(1.2.3.999)",
         "EnableStatic 5 {10.9.9.9, 0.0.0.0}, {255.255.255.255, 255.255.255.255}"},
        {"STATIC +IP MASK(255.0.0.0)",
         "SetStatic threw SetStatic:62(2) Static IP addresses/masks list empty"},
        {"STATIC +IP ADDRESS(10.0.0.1)",
         "SetStatic threw SetStatic:62(2) Static IP addresses/masks list empty"},
        {"DHCP +IP ADDRESS(10.0.0.1)", kNotStaticError},
        {"DHCP +IP NAME(x)", kNotStaticError},  // before the kind is looked at
        {"STATIC GW(10.0.0.1) +IP ADDRESS(10.0.0.1)", kNotStaticError},
    });
    ExpectCommands({{"+IP -", ""}, {"+IP ADDRESS(10.0.0.1)", kNotStaticError}});
}

TEST_F(Rules, StaticRouteScope) {
    machine.state.hosts = {{"gate.example", {"10.1.1.9"}}};
    const auto add = [](const char* route) { return std::string("route -p ADD ") + route; };
    ExpectCommands({
        {"+ROUTE ADDRESS(9.0.0.0) ADDRESS(8.0.0.0) MASK(255.0.0.0) RGW(10.1.1.1) GW(gate.example) "
         "METRIC(7x) -",
         add("8.0.0.0 mask 255.0.0.0 10.1.1.9 METRIC 7")},
        {"+ROUTE METRIC(-3) -",
         add("255.255.255.255 mask 255.255.255.255 255.255.255.255 METRIC -3")},
        {"+ROUTE ADDRESS(3.0.0.0) - +ROUTE - +ROUTE ADDRESS(2.0.0.0) -",
         add("2.0.0.0 mask 255.255.255.255 255.255.255.255 METRIC 0") + "; " +
             add("3.0.0.0 mask 255.255.255.255 255.255.255.255 METRIC 0")},
        {"+ROUTE - WORKGROUP(A) +ROUTE -",
         "SetStaticRoute; " + JoiningGroup("A") + "; SetStaticRoute"},
        {"+NIC(x) +ROUTE - DHCP - +NIC(y) +ROUTE -",
         "ConfigureNic n/n/n index n {EnableDHCP 5}; SetStaticRoute; ConfigureNic n/n/n index n "
         "{}; SetStaticRoute"},
        {"+ROUTE ADDRESS(nobody.example)", "SetStaticRoute"},  // never finished
    });
}

TEST_F(Rules, UnbalancedScopes) {
    ExpectCommands({
        {"-", ""},
        {"- -", kEndError},
        {"+NIC(x) - - -", kEndError},
        {"- +DHCP", kValueError},
        {"- +NIC(x) DHCP +IP -ROUTE DNS(1.2.3.4) -NAME",
         "ConfigureNic n/n/n index n {EnableDHCP 5; SetDNSServerSearchOrder 5 {1.2.3.4}}"},
        {"+NIC(x) -IP NAME(PC9)", "ConfigureNic n/n/n index n {}; " + Renaming("PC9")},
        {"+NIC(x) +NIC(y) DHCP - DHCP",
         "ConfigureNic n/n/n index n {EnableDHCP 5}; ConfigureNic n/n/n index n "
         "{EnableDHCP 5}"},
    });
}

}  // namespace
