#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/sys/nic/NicDiscovery.h"
#include "machine/native/Machine.h"
#include "tests/native/CommandText.h"
#include "tests/native/Machines.h"

namespace native {

/// The texts of actions on the computer.
inline std::string Renaming(const std::string& name, const std::string& user = {},
                            const std::string& password = {}) {
    return "Rename (Name=\"" + name + "\", Password=" + password + ", UserName=\"" + user + "\")";
}
inline std::string Joining(const std::string& name, const std::string& user,
                           const std::string& password, const std::string& unit, int options) {
    return "JoinDomainOrWorkgroup (Name=\"" + name + "\", Password=" + password + ", UserName=\"" +
           user + "\", AccountOU=\"" + unit + "\", FJoinOptions=" + std::to_string(options) + ")";
}
inline std::string JoiningGroup(const std::string& name, const std::string& user = {},
                                const std::string& password = {}) {
    return Joining(name, user, password, "", 0);
}

/// A test on a new machine with those adapters. An action that the test has not taken fails it.
class OnMachine : public testing::Test {
protected:
    OnMachine() : machine(Reset(FourAdapters())) {
        // The tree is made once in the life of a process, from what the first test has set up.
        sys::getNicList();
        machine.trace.Clear();
    }

    void TearDown() override { EXPECT_EQ(TakeActions(), ""); }

    /// Makes the machine a member of corp.example, with its object in East/Sales.
    void MakeMember() {
        machine.state.membership = machine::Membership::OfDomain("CORP", "corp.example");
        machine.state.domains[0].units[0].units[0].computers = {"PC1"};
    }

    machine::Adapter& Adapter(std::uint32_t index) {
        return *machine::FindAdapter(machine.state, index);
    }

    /// What the machine was asked to change since the last call.
    std::string TakeActions() {
        const std::string actions = ActionsOf(machine.trace.Entries());
        machine.trace.Clear();
        return actions;
    }

    Machine& machine;
};

}  // namespace native
