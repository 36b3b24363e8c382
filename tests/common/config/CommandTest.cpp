#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "common/config/command/ChangeCompName.h"
#include "common/config/command/JoinDomain.h"
#include "common/config/command/JoinWorkgroup.h"
#include "common/config/command/MoveOu.h"
#include "common/config/command/SetDhcp.h"
#include "common/config/command/SetDns.h"
#include "common/config/command/SetDnsSuffix.h"
#include "common/config/command/SetGateway.h"
#include "common/config/command/SetStatic.h"
#include "common/config/command/Sleep.h"
#include "common/sys/Domain.h"
#include "tests/native/OnMachine.h"

namespace config::command {

namespace {

using native::OnMachine;

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
    machine::Adapter& adapter = Adapter(7);
    adapter.ipAddress = Texts{"10.0.0.1", "10.0.0.2"};
    adapter.ipSubnet = Texts{"255.0.0.0"};
    adapter.gateways = Texts{"10.0.0.254", "10.0.0.253"};
    adapter.dnsServers = Texts{"10.1.0.1", "10.1.0.2"};
    machine.state.dnsSuffixes = {"corp.example", "example"};
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

    adapter = native::PciAdapter(7, 2);
    EXPECT_TRUE(IsNeeded(Static({"10.0.0.1"}, {})));
    EXPECT_TRUE(IsNeeded(List<SetGateway>({"10.0.0.254"})));
    adapter.dhcpEnabled = true;
    adapter.ipAddress = Texts{"10.0.0.1"};
    EXPECT_FALSE(IsNeeded(Dhcp()));
    EXPECT_TRUE(IsNeeded(Static({"10.0.0.1"}, {})));  // the address it leased
    machine.state.adapters.clear();
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
    machine.state.membership = machine::Membership::OfWorkgroup("WORKGROUP");
    EXPECT_TRUE(IsNeeded(OfJoe<JoinDomain>("corp.example")));  // which it has left
}

TEST_F(Commands, DescribeWhatTheyWillSet) {
    const std::pair<Command, std::string> cases[] = {
        {Static({"10.0.0.1", "10.0.0.2"}, {"255.0.0.0"}),
         "IP and Subnet Masks: {ip=10.0.0.1,mask=255.0.0.0}{ip=10.0.0.2}"},
        {Static({"10.0.0.1"}, {"255.0.0.0", "255.255.0.0", "0.0.0.0"}),
         "IP and Subnet Masks: {ip=10.0.0.1,mask=255.0.0.0}{mask=255.255.0.0}{mask=0.0.0.0}"},
        {List<SetDnsSuffix>({"a.b", "", "100%n"}), "DNS Suffixes=a.b,,100%n"},
        {std::make_unique<Sleep>(0xFFFFFFFF), "Duration=4294967295 milliseconds"},
    };
    for (const auto& [command, description] : cases) {
        EXPECT_EQ(command->GetDescription(), description);
    }
}

}  // namespace

}  // namespace config::command
