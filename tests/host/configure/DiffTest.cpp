#include "host/configure/Diff.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

namespace {

using host::configure::Change;
using host::configure::Compare;
using machine::State;
using testing::ElementsAreArray;

using Texts = std::vector<std::string>;

Texts Lines(const std::vector<Change>& changes) {
    Texts lines;
    for (const Change& change : changes) {
        lines.push_back(change.where + "|" + change.what + "|" + change.before + "|" +
                        change.after);
    }
    return lines;
}

TEST(Diff, EveryChangeIsNamedOnce) {
    const std::string first = "PCI 2/1/0 \"Ethernet\" (index 1)";
    const std::string second = "PCI 3/0/0 \"Ethernet 2\" (index 2)";
    struct Case {
        std::function<void(State&)> change;
        Texts lines;
    };
    const Case cases[] = {
        {[](State& state) { state.pendingComputerName = "PC7"; },
         {"machine|computer name after the restart|none|PC7"}},
        {[](State& state) {
             state.membership = machine::Membership::OfDomain("LAB", "lab.example");
         },
         {"machine|membership|workgroup WORKGROUP|domain lab.example"}},
        {[](State& state) { state.pendingMembership = machine::Membership::OfWorkgroup("X"); },
         {"machine|membership after the restart|none|workgroup X"}},
        {[](State& state) {
             state.dnsSuffixes = {"a", "b"};
         },
         {"machine|DNS suffixes|none|a, b"}},
        {[](State& state) {
             state.adapters[1].dhcpEnabled = true;
             state.adapters[0].gateways.reset();
         },
         {first + "|gateways|192.0.2.1|none", second + "|DHCP|off|on"}},
        // A null list and an empty one are the same to people.
        {[](State& state) { state.adapters[2].gateways.emplace(); }, {}},
        {[](State& state) { state.adapters[1].ipSubnet->front() = "255.0.0.0"; },
         {second + "|IP addresses|198.51.100.20/255.255.255.0|198.51.100.20/255.0.0.0"}},
        {[](State& state) { state.adapters.erase(state.adapters.begin()); },
         {first + "|adapter|there|"}},
        // A second copy of a route is one more route.
        {[](State& state) { state.routes.push_back(state.routes.back()); },
         {"routes|||10.20.0.0 mask 255.255.0.0 via 198.51.100.254 metric 5"}},
        {[](State& state) { state.routes.back().metric = 6; },
         {"routes||10.20.0.0 mask 255.255.0.0 via 198.51.100.254 metric 5|",
          "routes|||10.20.0.0 mask 255.255.0.0 via 198.51.100.254 metric 6"}},
        {[](State& state) {
             state.domains[0].computers.clear();
             state.domains[0].units[0].units[0].computers = {"PRINTSERVER"};
         },
         {"domain corp.example|computer object|PRINTSERVER in Computers|",
          "domain corp.example|computer object||PRINTSERVER in East/Sales"}},
        {[](State& state) {
             state.registry.push_back({"SOFTWARE\\X", {machine::RegistryValue::Text("V", "abc")}});
         },
         {"registry|||SOFTWARE\\X, value V, 4 bytes"}},
        // Accounts are no part of the machine that is configured.
        {[](State& state) { state.domains[0].accounts[0].password = "other"; }, {}},
    };
    for (const Case& tried : cases) {
        State after = machine::DefaultState();
        tried.change(after);
        EXPECT_THAT(Lines(Compare(machine::DefaultState(), after)), ElementsAreArray(tried.lines));
    }
}

}  // namespace
