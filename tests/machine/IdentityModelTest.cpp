#include "machine/model/Identity.h"

#include <gtest/gtest.h>

#include "machine/model/Directory.h"

namespace machine::model {
namespace {

const Credentials joiner{"corp.example\\joiner", "Join-Me-1"};
const Credentials visitor{"CORP\\visitor", "Look-Only-2"};

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
    const std::string sales = "OU=Sales,OU=East,DC=corp,DC=example";
    struct Case {
        const char* what;
        const State& machine;
        const char* name;
        Credentials credentials;
        std::string unit;
        std::uint32_t options;
        std::uint32_t code;
    };
    const Case cases[] = {
        {"new account", workgroup, "corp.example", joiner, "", 0x3, 0},
        {"new account in a unit", workgroup, "CORP", joiner, sales, 0x103, 0},
        {"no account yet", workgroup, "corp.example", joiner, "", 0x1, 1317},
        {"account waiting", prepared, "corp.example", joiner, "", 0x1, 0},
        {"account elsewhere", prepared, "corp.example", joiner, sales, 0x3, 2224},
        {"wrong password", workgroup, "corp.example", {"joiner", "no"}, "", 0x3, 1326},
        {"wrong account", workgroup, "corp.example", {"nobody", "Join-Me-1"}, "", 0x3, 1326},
        {"other authority", workgroup, "corp.example", {"LAB\\joiner", "Join-Me-1"}, "", 0x3, 1326},
        {"user at domain",
         workgroup,
         "corp.example",
         {"joiner@corp.example", "Join-Me-1"},
         "",
         0x3,
         0},
        {"no right", workgroup, "corp.example", visitor, "", 0x3, 5},
        {"no such domain", workgroup, "lab.example", joiner, "", 0x3, 1355},
        {"nobody answers", unreachable, "corp.example", joiner, "", 0x3, 1355},
        {"no such unit", workgroup, "corp.example", joiner, "OU=No,DC=corp,DC=example", 0x3, 2},
        {"member already", member, "corp.example", joiner, "", 0x1, 2691},
        {"member joins again", member, "corp.example", joiner, "", 0x21, 0},
        {"unknown option", workgroup, "corp.example", joiner, "", 0x80000001, 87},
        {"workgroup", workgroup, "OFFICE", {}, "", 0, 0},
        {"workgroup while a member", member, "OFFICE", {}, "", 0, 2691},
        {"workgroup after leaving", leaving, "OFFICE", {}, "", 0, 0},
        {"workgroup without a name", workgroup, "", {}, "", 0, 2695},
        {"workgroup with a long name", workgroup, "SIXTEENCHARACTER", {}, "", 0, 2695},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(one.what);
        State state = one.machine;
        EXPECT_EQ(Join(state, one.name, one.credentials, one.unit, one.options), one.code);
        if (one.code != 0) {
            EXPECT_EQ(state, one.machine);
        } else {
            ASSERT_TRUE(state.pendingMembership.has_value());
            EXPECT_EQ(state.pendingMembership->member, (one.options & 1) != 0);
        }
    }
}

TEST(IdentityModel, UnjoinGivesTheCodesOfWindows) {
    struct Case {
        const char* what = "";
        bool isMember = false;
        Credentials credentials;
        std::uint32_t options = 0;
        std::uint32_t code = 0;
    };
    const Case cases[] = {
        {"with an account", true, joiner, 0, 0},
        {"on its own", true, {}, 0, 0},
        {"wrong password", true, {"joiner", "no"}, 0, 1326},
        {"no right", true, visitor, 4, 5},
        {"unknown option", true, joiner, 1, 87},
        {"no member", false, joiner, 0, 2692},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(one.what);
        State state = one.isMember ? Member() : DefaultState();
        EXPECT_EQ(Unjoin(state, one.credentials, one.options), one.code);
        EXPECT_EQ(state.pendingMembership.has_value(), one.code == 0);
    }
    State state = Member();
    EXPECT_EQ(Unjoin(state, joiner, 0), 0U);
    EXPECT_EQ(Unjoin(state, joiner, 0), 2692U) << "it has left already";
}

TEST(IdentityModel, RenameChangesTheObjectAtOnceAndTheNameLater) {
    State state = Member();
    state.domains[0].computers.push_back("TAKEN");
    EXPECT_EQ(Rename(state, "", joiner), 1210U);
    EXPECT_EQ(Rename(state, "no blanks", joiner), 1210U);
    EXPECT_EQ(Rename(state, "12345", joiner), 1210U);
    EXPECT_EQ(Rename(state, "pc2", {}), 5U);
    EXPECT_EQ(Rename(state, "pc2", {"joiner", "no"}), 1326U);
    EXPECT_EQ(Rename(state, "pc2", visitor), 5U);
    EXPECT_EQ(Rename(state, "taken", joiner), 2224U);
    EXPECT_EQ(Rename(state, "pc2", joiner), 0U);
    EXPECT_EQ(state.computerName, "WORKSTATION1");
    EXPECT_EQ(OwnDistinguishedName(state), "CN=PC2,OU=Sales,OU=East,DC=corp,DC=example");
    ApplyRestart(state);
    EXPECT_EQ(state.computerName, "PC2");
    EXPECT_EQ(state.adapters[0].dnsHostName, "pc2");
    EXPECT_EQ(OwnDistinguishedName(state), "CN=PC2,OU=Sales,OU=East,DC=corp,DC=example");
}

TEST(DirectoryModel, MovesComputersOrSaysWhyNot) {
    const std::string here = "LDAP://CN=WORKSTATION1,OU=Sales,OU=East,DC=corp,DC=example";
    const std::string west = "LDAP://OU=West,DC=corp,DC=example";
    State full = Member();
    full.domains[0].units[1].computers = {"workstation1"};
    struct Case {
        const char* what;
        State machine;
        std::string destination;
        std::string account;
        std::string password;
        std::string source;
        std::uint32_t code;
    };
    const Case cases[] = {
        {"to a unit", Member(), west, "corp.example\\joiner", "Join-Me-1", here, 0},
        {"to the computers", Member(), "LDAP://CN=Computers,DC=corp,DC=example", "joiner",
         "Join-Me-1", here, 0},
        {"to itself", Member(), "LDAP://OU=Sales,OU=East,DC=corp,DC=example", "joiner", "Join-Me-1",
         here, 0},
        {"wrong password", Member(), west, "joiner", "no", here, LogonFailure},
        {"no such unit", Member(), "LDAP://OU=No,DC=corp,DC=example", "joiner", "Join-Me-1", here,
         NoSuchObject},
        {"no such domain", Member(), "LDAP://OU=West,DC=lab,DC=example", "joiner", "Join-Me-1",
         here, ServerDown},
        {"no provider", Member(), "OU=West,DC=corp,DC=example", "joiner", "Join-Me-1", here,
         BadPathname},
        {"provider in other case", Member(), "ldap://OU=West,DC=corp,DC=example", "joiner",
         "Join-Me-1", here, BadPathname},
        {"broken name", Member(), "LDAP://OU=West,,DC=corp,DC=example", "joiner", "Join-Me-1", here,
         InvalidDnSyntax},
        {"no such computer", Member(), west, "joiner", "Join-Me-1",
         "LDAP://CN=OTHER,OU=Sales,OU=East,DC=corp,DC=example", NoSuchObject},
        {"no right", Member(), west, "visitor", "Look-Only-2", here, AccessDenied},
        {"name taken there", full, west, "joiner", "Join-Me-1", here, AlreadyExists},
        {"the domain itself", Member(), "LDAP://DC=corp,DC=example", "joiner", "Join-Me-1", here,
         UnwillingToPerform},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(one.what);
        State state = one.machine;
        Container container;
        Account account;
        std::uint32_t code =
            Bind(state, one.destination, one.account, one.password, container, account);
        if (code == DirectoryOk) {
            code = MoveComputer(state, one.destination, account, one.source, "");
        }
        EXPECT_EQ(code, one.code);
        if (code == DirectoryOk) {
            EXPECT_TRUE(FindComputer(state.domains[0], "WORKSTATION1").has_value());
            EXPECT_EQ(OwnDistinguishedName(state), "CN=WORKSTATION1," + one.destination.substr(7));
        } else {
            EXPECT_EQ(state, one.machine);
        }
    }
}

}  // namespace
}  // namespace machine::model
