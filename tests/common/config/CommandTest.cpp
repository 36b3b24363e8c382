#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "common/config/command/ChangeCompName.h"
#include "common/config/command/JoinDomain.h"
#include "common/config/command/JoinWorkgroup.h"
#include "common/config/command/MoveOu.h"
#include "common/config/command/Reboot.h"
#include "common/config/command/SetDhcp.h"
#include "common/config/command/SetDns.h"
#include "common/config/command/SetDnsSuffix.h"
#include "common/config/command/SetGateway.h"
#include "common/config/command/SetStatic.h"
#include "common/config/command/Sleep.h"
#include "common/err/GeneralError.h"
#include "tests/native/CommandText.h"
#include "tests/native/OnMachine.h"

namespace config::command {

namespace {

using fake::OnMachine;

using Command = std::unique_ptr<IConfigureCommand>;
using Texts = std::vector<std::string>;

template <class Class>
Command OfAdapter7(std::unique_ptr<Class> command) {
    command->SetNicIndex(7);
    return command;
}

Command Dhcp() {
    return OfAdapter7(std::make_unique<SetDhcp>());
}

Command Static(const Texts& addresses, const Texts& masks) {
    auto command = std::make_unique<SetStatic>();
    for (const std::string& address : addresses) {
        command->AddAddress(address);
    }
    for (const std::string& mask : masks) {
        command->AddMask(mask);
    }
    return OfAdapter7(std::move(command));
}

template <class Class>
Command List(const Texts& texts) {
    auto command = std::make_unique<Class>();
    for (const std::string& text : texts) {
        command->Add(text);
    }
    return OfAdapter7(std::move(command));
}

template <class Class>
Command OfJoe(const std::string& text) {
    auto command = std::make_unique<Class>(text);
    command->SetUserName("joe");
    command->SetPassword("secret");
    return command;
}

class Commands : public OnMachine {
protected:
    struct NeededCase {
        const char* what;
        Command command;
        bool needed;
    };
    static void ExpectNeeded(const std::vector<NeededCase>& cases) {
        for (const NeededCase& test : cases) {
            EXPECT_EQ(test.command->IsNeeded(), test.needed)
                << test.what << ": " << test.command->GetDescription();
        }
    }
    template <class... Cases>
    static std::vector<NeededCase> Table(Cases... cases) {
        std::vector<NeededCase> table;
        (table.push_back(std::move(cases)), ...);
        return table;
    }
};

TEST_F(Commands, OfAnAdapterAreNeededWhereItsSettingsDiffer) {
    fake::Adapter& adapter = Adapter(7);
    adapter.addresses = {"10.0.0.1", "10.0.0.2"};
    adapter.masks = {"255.0.0.0"};
    adapter.gateways = {"10.0.0.254", "10.0.0.253"};
    adapter.dnsServers = {"10.1.0.1", "10.1.0.2"};
    adapter.dnsSuffixes = {"corp.example", "example"};
    ExpectNeeded(Table(
        NeededCase{"on static addresses", Dhcp(), true},
        NeededCase{"the same", Static({"10.0.0.1", "10.0.0.2"}, {"255.0.0.0"}), false},
        NeededCase{"another spelling", Static({"10.1"}, {"255.0.0.0"}), false},
        NeededCase{"another second address", Static({"10.0.0.1", "10.0.0.9"}, {}), false},
        NeededCase{"another mask", Static({"10.0.0.1"}, {"255.255.0.0"}), false},
        NeededCase{"the second one first", Static({"10.0.0.2", "10.0.0.1"}, {"255.0.0.0"}), true},
        NeededCase{"no address: there is an error to report", Static({}, {"255.0.0.0"}), true},
        NeededCase{"the same", List<SetGateway>({"10.0.0.254", "10.0.0.253"}), false},
        NeededCase{"another order", List<SetGateway>({"10.0.0.253", "10.0.0.254"}), true},
        NeededCase{"fewer", List<SetGateway>({"10.0.0.254"}), true},
        NeededCase{"the same", List<SetDns>({"10.1.0.1", "10.1.0.2"}), false},
        NeededCase{"another", List<SetDns>({"10.1.0.1", "10.1.0.3"}), true},
        NeededCase{"more", List<SetDns>({"10.1.0.1", "10.1.0.2", "10.1.0.2"}), true},
        NeededCase{"the same", List<SetDnsSuffix>({"corp.example", "example"}), false},
        NeededCase{"other letter case", List<SetDnsSuffix>({"corp.example", "Example"}), true},
        NeededCase{"fewer", List<SetDnsSuffix>({"corp.example"}), true}));

    adapter = fake::PciAdapter(7, 2);
    ExpectNeeded(Table(NeededCase{"no address yet", Static({"10.0.0.1"}, {}), true},
                       NeededCase{"no gateway", List<SetGateway>({"10.0.0.254"}), true}));
    adapter.dhcpEnabled = true;
    adapter.addresses = {"10.0.0.1"};
    ExpectNeeded(Table(NeededCase{"on DHCP", Dhcp(), false},
                       NeededCase{"the address it leased", Static({"10.0.0.1"}, {}), true}));
    machine.adapters.clear();
    ExpectNeeded(Table(NeededCase{"no such adapter", Dhcp(), true},
                       NeededCase{"no such adapter", Static({"0.0.0.0"}, {}), false}));
}

TEST_F(Commands, OfTheComputerAreNeededWhereItsNamesDiffer) {
    ExpectNeeded(Table(NeededCase{"other letter case", OfJoe<ChangeCompName>("pc1"), false},
                       NeededCase{"another name", OfJoe<ChangeCompName>("PC2"), true},
                       NeededCase{"other letter case", OfJoe<JoinWorkgroup>("Workgroup"), false},
                       NeededCase{"another workgroup", OfJoe<JoinWorkgroup>("SALES"), true},
                       NeededCase{"no name", OfJoe<JoinWorkgroup>(""), false},
                       NeededCase{"no member", OfJoe<JoinDomain>("corp.example"), true},
                       NeededCase{"no name", OfJoe<JoinDomain>(""), false},
                       NeededCase{"no member", OfJoe<MoveOu>("West"), false}));
    MakeMember();
    ExpectNeeded(Table(
        NeededCase{"a member has none", OfJoe<JoinWorkgroup>("WORKGROUP"), true},
        NeededCase{"other letter case", OfJoe<JoinDomain>("Corp.Example"), false},
        NeededCase{"the flat name, which is another", OfJoe<JoinDomain>("CORP"), true},
        NeededCase{"another domain", OfJoe<JoinDomain>("other.example"), true},
        NeededCase{"other letter case", OfJoe<MoveOu>("EAST/sales"), false},
        NeededCase{"the other form", OfJoe<MoveOu>("OU=Sales,OU=East"), false},
        NeededCase{"with its domain", OfJoe<MoveOu>("OU=Sales,OU=East,DC=corp,DC=example"), false},
        NeededCase{"the unit above", OfJoe<MoveOu>("East"), true},
        NeededCase{"out of the units", OfJoe<MoveOu>(""), true},
        NeededCase{"nothing given", std::make_unique<MoveOu>(""), false}));
    EXPECT_EQ(machine.heldPassword, "secret");  // the directory was asked as joe

    machine.member = false;
    ExpectNeeded(Table(NeededCase{"it has left", OfJoe<JoinDomain>("corp.example"), true}));
}

TEST_F(Commands, DescribeWhatTheyWillSetWithoutThePassword) {
    struct DescriptionCase {
        Command command;
        std::string description;
    };
    const DescriptionCase cases[] = {
        {Dhcp(), ""},
        {Static({"10.0.0.1", "10.0.0.2"}, {"255.0.0.0"}),
         "IP and Subnet Masks: {ip=10.0.0.1,mask=255.0.0.0}{ip=10.0.0.2}"},
        {Static({"10.0.0.1"}, {"255.0.0.0", "255.255.0.0", "0.0.0.0"}),
         "IP and Subnet Masks: {ip=10.0.0.1,mask=255.0.0.0}{mask=255.255.0.0}{mask=0.0.0.0}"},
        {Static({}, {}), "IP and Subnet Masks: "},
        {List<SetGateway>({"10.0.0.1", "10.2"}), "Gateways=10.0.0.1,10.0.0.2"},
        {List<SetDns>({"10.0.0.1"}), "DNS Servers=10.0.0.1"},
        {List<SetDnsSuffix>({"a.b", "", "100%n"}), "DNS Suffixes=a.b,,100%n"},
        {OfJoe<ChangeCompName>("PC2"), "Name=PC2 {User=joe}"},
        {OfJoe<JoinDomain>("d.e"), "DNS Domain=d.e, Windows Domain= {User=joe}"},
        {OfJoe<JoinWorkgroup>("SALES"), "Workgroup=SALES {User=joe}"},
        {OfJoe<MoveOu>("East/Sales"), "OU=East/Sales"},
        {std::make_unique<Sleep>(8000), "Duration=8000 milliseconds"},
        {std::make_unique<Sleep>(0xFFFFFFFF), "Duration=4294967295 milliseconds"},
        {std::make_unique<Reboot>(), ""},
    };
    for (const DescriptionCase& test : cases) {
        EXPECT_EQ(test.command->GetDescription(), test.description);
        test.command->Reserved();  // does nothing, in every command
    }
    Reboot().Execute();
}

TEST_F(Commands, TakeTheirMethodsReturnValue) {
    struct MethodCase {
        std::string function;
        std::string arguments;
        std::function<Command()> make;
        std::string error;
    };
    const MethodCase cases[] = {
        {"enableDhcp", "7", Dhcp, "SetDhcp:48(4) Configuring DHCP failed"},
        {"enableStatic", "7, 10.0.0.1, 255.0.0.0,255.255.0.0",
         [] {
             return Static({"10.0.0.1"}, {"255.0.0.0", "255.255.0.0"});
         },
         "SetStatic:68(4) Configuring static IP addresses failed"},
        {"setGateways", "7, 10.0.0.1,10.0.0.2",
         [] {
             return List<SetGateway>({"10.0.0.1", "10.0.0.2"});
         },
         "SetGateway:52(4) Configuring gateways failed"},
        {"setDnsServerSearchOrder", "7, 10.0.0.1", [] { return List<SetDns>({"10.0.0.1"}); },
         "SetDns:54(4) Configuring DNS servers failed"},
        {"setDnsSuffixSearchOrder", "a.b,c.d",
         [] {
             return List<SetDnsSuffix>({"a.b", "c.d"});
         },
         "SetDnsSuffix:54(4) Configuring DNS suffixes failed"},
        {"renameComputer", "PC2, joe:secret", [] { return OfJoe<ChangeCompName>("PC2"); },
         "ChangeCompName:45(4) Configuring computer name failed"},
    };
    for (const MethodCase& test : cases) {
        for (const std::uint32_t value : {0U, 1U, 2U, 84U, 0x80041003U, 0xFFFFFFFFU}) {
            machine.returns[test.function] = value;
            std::string error;
            try {
                test.make()->Execute();
            } catch (const config::ConfigError& thrown) {
                error = fake::ErrorText();
                EXPECT_EQ(thrown.Value(), static_cast<std::int32_t>(value));
            }
            EXPECT_EQ(error, value <= 1 ? "" : test.error) << test.function << " " << value;
            EXPECT_EQ(TakeChanges(), test.function + "(" + test.arguments + ")");
        }
    }
}

TEST_F(Commands, StaticAddressingNeedsBothLists) {
    for (const Command& command : {Static({}, {"255.0.0.0"}), Static({"10.0.0.1"}, {})}) {
        EXPECT_THROW(command->Execute(), config::ConfigError);
    }
}

TEST_F(Commands, HandTheirAccountToTheDomain) {
    for (const std::uint32_t value : {0U, 1U, 5U}) {  // nobody looks at what comes back
        machine.returns["JoinDomainAndOu"] = machine.returns["JoinWorkgroup"] = value;
        OfJoe<JoinDomain>("d.e")->Execute();
        OfJoe<JoinWorkgroup>("SALES")->Execute();
        OfJoe<MoveOu>("West")->Execute();
        JoinWorkgroup("SALES").Execute();
        EXPECT_EQ(TakeChanges(),
                  "JoinDomainAndOu(d.e, , joe:secret); JoinWorkgroup(SALES, joe:secret); "
                  "MoveOu(West, joe:secret); JoinWorkgroup(SALES, :)");
    }
    Sleep(8000).Execute();
    EXPECT_EQ(TakeChanges(), "Pause(8000)");
}

}  // namespace

}  // namespace config::command
