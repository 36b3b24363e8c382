#include "machine/model/Identity.h"

#include <gtest/gtest.h>

#include "machine/model/Directory.h"

namespace machine::model {
namespace {

const Credentials kJoiner{"corp.example\\joiner", "Join-Me-1"};
const Credentials kVisitor{"CORP\\visitor", "Look-Only-2"};

State Member() {
    State state = DefaultState();
    state.membership = Membership::OfDomain("CORP", "corp.example");
    state.domains[0].units[0].units[0].computers = {"WORKSTATION1"};  // East/Sales
    return state;
}

TEST(IdentityModel, JoinGivesTheCodesOfWindows) {
    const State workgroup = DefaultState();
    const State member = Member();
    State unreachable = workgroup;
    unreachable.domains[0].reachable = false;
    State prepared = workgroup;
    prepared.domains[0].computers.push_back("WORKSTATION1");
    State leaving = member;
    leaving.pendingMembership = Membership::OfWorkgroup("WORKGROUP");
    State foreign = prepared;
    foreign.domains[0].owners = {{"workstation1", "provisioner"}};
    State own = foreign;
    own.domains[0].owners[0].account = "Joiner";
    State trusted = foreign;
    trusted.domains[0].accounts[0].mayReuse = true;
    State exhausted = workgroup;
    exhausted.domains[0].accounts[0].quota = 0;
    State connected = workgroup;
    connected.domains[0].connectedAs = "visitor";
    State blocked = workgroup;
    blocked.domains[0].joinAnswer = 58;
    State silent = workgroup;
    silent.system.workstationService = false;
    State powerless = workgroup;
    powerless.system.elevated = false;
    const std::string sales = "OU=Sales,OU=East,DC=corp,DC=example";
    const std::string corp = "corp.example";
    struct Case {
        const State& machine;
        std::string name;
        Credentials credentials;
        std::string unit;
        std::uint32_t options;
        std::uint32_t code;
    };
    const Case cases[] = {
        {workgroup, "CORP", kJoiner, sales, 0x103, 0},
        {prepared, corp, kJoiner, "", 0x1, 0},        // one is waiting
        {prepared, corp, kJoiner, sales, 0x3, 2224},  // but elsewhere
        {foreign, corp, kJoiner, "", 0x1, 2732},
        {foreign, corp, kJoiner, "", 0x3, 2732},
        {own, corp, kJoiner, "", 0x3, 0},
        {trusted, corp, kJoiner, "", 0x1, 0},
        {workgroup, corp, kJoiner, "", 0x1, 1332},
        {workgroup, corp, kJoiner, "OU=North,DC=corp,DC=example", 0x3, 2},
        {exhausted, corp, kJoiner, "", 0x3, 8557},
        {connected, corp, kJoiner, "", 0x3, 1219},
        {blocked, corp, kJoiner, "", 0x3, 58},
        {silent, corp, kJoiner, "", 0x3, 2138},
        {powerless, corp, kJoiner, "", 0x3, 5},
        {workgroup, corp, {"joiner", "no"}, "", 0x3, 1326},
        {workgroup, corp, {"LAB\\joiner", "Join-Me-1"}, "", 0x3, 1326},
        {workgroup, corp, {"joiner@corp.example", "Join-Me-1"}, "", 0x3, 0},
        {workgroup, corp, kVisitor, "", 0x3, 5},
        {unreachable, corp, kJoiner, "", 0x3, 1355},
        {member, corp, kJoiner, "", 0x21, 0},
        {workgroup, corp, kJoiner, "", 0x80000001, 87},
        {member, "OFFICE", {}, "", 0, 2691},
        {leaving, "OFFICE", {}, "", 0, 0},
        {workgroup, "SIXTEENCHARACTER", {}, "", 0, 2695},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(testing::Message() << &one - cases << " " << one.name);
        State state = one.machine;
        EXPECT_EQ(Join(state, one.name, one.credentials, one.unit, one.options), one.code);
        if (one.code != 0) {
            EXPECT_EQ(state, one.machine);
        } else {
            ASSERT_TRUE(state.pendingMembership.has_value());
            EXPECT_EQ(ShownMembership(state).member, (one.options & 1) != 0);
        }
    }
}

TEST(IdentityModel, UnjoinGivesTheCodesOfWindows) {
    State member = Member();
    EXPECT_EQ(Unjoin(member, {"joiner", "no"}, 0), 1326U);
    EXPECT_EQ(Unjoin(member, kJoiner, 1), 87U);
    EXPECT_EQ(member, Member());
    State powerless = member;
    powerless.system.elevated = false;
    EXPECT_EQ(Unjoin(powerless, kJoiner, 0), 5U);
    EXPECT_EQ(Rename(powerless, "pc2", kJoiner), 5U);
    State alone = member;
    EXPECT_EQ(Unjoin(alone, {}, 0), 0U);
    EXPECT_EQ(Unjoin(member, kJoiner, 0), 0U);
    EXPECT_TRUE(member.pendingMembership.has_value());
    EXPECT_EQ(Unjoin(member, kJoiner, 0), 2692U) << "it has left already";
}

TEST(IdentityModel, RenameChangesTheObjectAtOnceAndTheNameLater) {
    State state = Member();
    state.domains[0].computers.push_back("TAKEN");
    EXPECT_EQ(Rename(state, "no blanks", kJoiner), 1210U);
    EXPECT_EQ(Rename(state, "12345", kJoiner), 1210U);
    EXPECT_EQ(Rename(state, "pc2", {"joiner", "no"}), 1326U);
    EXPECT_EQ(Rename(state, "taken", kJoiner), 2224U);
    EXPECT_EQ(Rename(state, "pc2", kJoiner), 0U);
    EXPECT_EQ(state.computerName, "WORKSTATION1");
    EXPECT_EQ(OwnDistinguishedName(state), "CN=PC2,OU=Sales,OU=East,DC=corp,DC=example");
    ApplyRestart(state);
    EXPECT_EQ(state.computerName, "PC2");
    EXPECT_EQ(state.adapters[0].dnsHostName, "pc2");
    EXPECT_EQ(Rename(state, "sales-pc-000000007", kJoiner), 0U);
    ApplyRestart(state);
    EXPECT_EQ(state.computerName, "SALES-PC-000000");
    EXPECT_EQ(state.hostName, "sales-pc-000000007");
}

}  // namespace
}  // namespace machine::model
