#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <type_traits>
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
#include "common/sys/Domain.h"
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

class Commands : public OnMachine {
protected:
    static bool IsNeeded(const Command& command) { return command->IsNeeded(); }

    template <class Class>
    std::unique_ptr<Class> Make(const std::string& text) {
        if constexpr (std::is_same_v<Class, ChangeCompName>) {
            return std::make_unique<Class>(text);
        } else {
            return std::make_unique<Class>(domain_, text);
        }
    }

    template <class Class>
    Command OfJoe(const std::string& text) {
        std::unique_ptr<Class> command = Make<Class>(text);
        command->SetUserName("joe");
        command->SetPassword("secret");
        return command;
    }

private:
    sys::Domain domain_;
};

TEST_F(Commands, OfAnAdapterAreNeededWhereItsSettingsDiffer) {
    fake::Adapter& adapter = Adapter(7);
    adapter.addresses = {"10.0.0.1", "10.0.0.2"};
    adapter.masks = {"255.0.0.0"};
    adapter.gateways = {"10.0.0.254", "10.0.0.253"};
    adapter.dnsServers = {"10.1.0.1", "10.1.0.2"};
    adapter.dnsSuffixes = {"corp.example", "example"};
    EXPECT_TRUE(IsNeeded(Dhcp()));
    // The first addresses count alone, and masks not at all.
    EXPECT_FALSE(IsNeeded(Static({"10.0.0.1", "10.0.0.9"}, {"255.255.0.0"})));
    EXPECT_FALSE(IsNeeded(Static({"10.1"}, {})));
    EXPECT_TRUE(IsNeeded(Static({"10.0.0.2", "10.0.0.1"}, {"255.0.0.0"})));
    EXPECT_TRUE(IsNeeded(Static({}, {"255.0.0.0"})));  // there is an error to report
    EXPECT_FALSE(IsNeeded(List<SetGateway>({"10.0.0.254", "10.0.0.253"})));
    EXPECT_TRUE(IsNeeded(List<SetGateway>({"10.0.0.253", "10.0.0.254"})));
    EXPECT_TRUE(IsNeeded(List<SetGateway>({"10.0.0.254"})));
    EXPECT_FALSE(IsNeeded(List<SetDns>({"10.1.0.1", "10.1.0.2"})));
    EXPECT_TRUE(IsNeeded(List<SetDns>({"10.1.0.1", "10.1.0.3"})));
    EXPECT_TRUE(IsNeeded(List<SetDns>({"10.1.0.1", "10.1.0.2", "10.1.0.2"})));
    EXPECT_FALSE(IsNeeded(List<SetDnsSuffix>({"corp.example", "example"})));
    EXPECT_TRUE(IsNeeded(List<SetDnsSuffix>({"corp.example", "Example"})));
    EXPECT_TRUE(IsNeeded(List<SetDnsSuffix>({"corp.example"})));

    adapter = fake::PciAdapter(7, 2);
    EXPECT_TRUE(IsNeeded(Static({"10.0.0.1"}, {})));
    EXPECT_TRUE(IsNeeded(List<SetGateway>({"10.0.0.254"})));
    adapter.dhcpEnabled = true;
    adapter.addresses = {"10.0.0.1"};
    EXPECT_FALSE(IsNeeded(Dhcp()));
    EXPECT_TRUE(IsNeeded(Static({"10.0.0.1"}, {})));  // the address it leased
    machine.adapters.clear();
    EXPECT_TRUE(IsNeeded(Dhcp()));
    EXPECT_FALSE(IsNeeded(Static({"0.0.0.0"}, {})));
}

TEST_F(Commands, OfTheComputerAreNeededWhereItsNamesDiffer) {
    EXPECT_FALSE(IsNeeded(OfJoe<ChangeCompName>("pc1")));
    EXPECT_TRUE(IsNeeded(OfJoe<ChangeCompName>("PC2")));
    EXPECT_FALSE(IsNeeded(OfJoe<JoinWorkgroup>("Workgroup")));
    EXPECT_TRUE(IsNeeded(OfJoe<JoinWorkgroup>("SALES")));
    EXPECT_FALSE(IsNeeded(OfJoe<JoinWorkgroup>("")));
    EXPECT_TRUE(IsNeeded(OfJoe<JoinDomain>("corp.example")));
    EXPECT_FALSE(IsNeeded(OfJoe<JoinDomain>("")));
    EXPECT_FALSE(IsNeeded(OfJoe<MoveOu>("West")));
    MakeMember();
    EXPECT_TRUE(IsNeeded(OfJoe<JoinWorkgroup>("WORKGROUP")));
    EXPECT_FALSE(IsNeeded(OfJoe<JoinDomain>("Corp.Example")));
    EXPECT_TRUE(IsNeeded(OfJoe<JoinDomain>("CORP")));  // the flat name, which is another
    EXPECT_FALSE(IsNeeded(OfJoe<MoveOu>("EAST/sales")));
    EXPECT_FALSE(IsNeeded(OfJoe<MoveOu>("OU=Sales,OU=East")));
    EXPECT_FALSE(IsNeeded(OfJoe<MoveOu>("OU=Sales,OU=East,DC=corp,DC=example")));
    EXPECT_TRUE(IsNeeded(OfJoe<MoveOu>("East")));
    EXPECT_TRUE(IsNeeded(OfJoe<MoveOu>("")));
    EXPECT_FALSE(IsNeeded(Make<MoveOu>("")));
    EXPECT_EQ(machine.heldPassword, "secret");  // the directory was asked as joe

    machine.member = false;
    EXPECT_TRUE(IsNeeded(OfJoe<JoinDomain>("corp.example")));  // which it has left
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
        {List<SetGateway>({"10.0.0.1", "10.2"}), "Gateways=10.0.0.1,10.0.0.2"},
        {List<SetDns>({"10.0.0.1"}), "DNS Servers=10.0.0.1"},
        {List<SetDnsSuffix>({"a.b", "", "100%n"}), "DNS Suffixes=a.b,,100%n"},
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
        Command command;
        std::string error;
    };
    const MethodCase cases[] = {
        {"enableDhcp", "7", Dhcp(), "SetDhcp:48(4) Configuring DHCP failed"},
        {"enableStatic", "7, 10.0.0.1, 255.0.0.0,255.255.0.0",
         Static({"10.0.0.1"}, {"255.0.0.0", "255.255.0.0"}),
         "SetStatic:68(4) Configuring static IP addresses failed"},
        {"setGateways", "7, 10.0.0.1,10.0.0.2", List<SetGateway>({"10.0.0.1", "10.0.0.2"}),
         "SetGateway:52(4) Configuring gateways failed"},
        {"setDnsServerSearchOrder", "7, 10.0.0.1", List<SetDns>({"10.0.0.1"}),
         "SetDns:54(4) Configuring DNS servers failed"},
        {"setDnsSuffixSearchOrder", "a.b,c.d", List<SetDnsSuffix>({"a.b", "c.d"}),
         "SetDnsSuffix:54(4) Configuring DNS suffixes failed"},
        {"renameComputer", "PC2, joe:secret", OfJoe<ChangeCompName>("PC2"),
         "ChangeCompName:45(4) Configuring computer name failed"},
    };
    for (const MethodCase& test : cases) {
        for (const std::uint32_t value : {0U, 1U, 2U, 0xFFFFFFFFU}) {
            machine.returns[test.function] = value;
            std::string error;
            try {
                test.command->Execute();
            } catch (const config::ConfigError& thrown) {
                error = fake::ErrorText();
                EXPECT_EQ(thrown.Value(), static_cast<std::int32_t>(value));
            }
            EXPECT_EQ(error, value <= 1 ? "" : test.error) << test.function << " " << value;
            EXPECT_EQ(TakeChanges(), test.function + "(" + test.arguments + ")");
        }
    }
}

TEST_F(Commands, HandTheirAccountToTheDomain) {
    for (const std::uint32_t value : {0U, 1U, 5U}) {  // nobody looks at what comes back
        machine.returns["JoinDomainAndOu"] = machine.returns["JoinWorkgroup"] = value;
        OfJoe<JoinDomain>("d.e")->Execute();
        OfJoe<JoinWorkgroup>("SALES")->Execute();
        OfJoe<MoveOu>("West")->Execute();
        Make<JoinWorkgroup>("SALES")->Execute();
        EXPECT_EQ(TakeChanges(),
                  "JoinDomainAndOu(d.e, , joe:secret); JoinWorkgroup(SALES, joe:secret); "
                  "MoveOu(West, joe:secret); JoinWorkgroup(SALES, :)");
    }
    Sleep(8000).Execute();
    EXPECT_EQ(TakeChanges(), "Pause(8000)");
}

}  // namespace

}  // namespace config::command
