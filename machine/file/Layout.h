// The members of a machine file in their order: one list for reading (file::Members) and writing
// (file::MemberWriter). What is read and written in a way of its own stands with the two.
#pragma once

#include <concepts>
#include <string>
#include <type_traits>
#include <variant>

#include "machine/AdapterProperties.h"
#include "machine/State.h"

namespace machine::file {

/// A value of the type that is read, or a constant one that is written.
template <typename Value, typename Type>
concept Like = std::same_as<std::remove_const_t<Value>, Type>;

template <typename Members>
void ListMembers(Members& members, Like<DhcpLease> auto& lease) {
    members.Optional("ipAddress", lease.ipAddress);
    members.Optional("ipSubnet", lease.ipSubnet);
    members.Optional("gateways", lease.gateways);
    members.Optional("dnsServers", lease.dnsServers);
    members.Optional("dnsDomain", lease.dnsDomain);
}

template <typename Members>
void ListMembers(Members& members, Like<Adapter> auto& adapter) {
    for (const AdapterProperty& property : AdapterProperties()) {
        const std::string name(property.name);
        const auto describe = [&](auto member) {
            if constexpr (std::is_same_v<decltype(member), std::uint32_t Adapter::*>) {
                members.Required(name, adapter.*member);  // the key
            } else {
                members.Optional(name, adapter.*member);
            }
        };
        std::visit(describe, property.member);
    }
}

template <typename Members>
void ListMembers(Members& members, Like<PersistedRoute> auto& route) {
    members.Required("destination", route.destination);
    members.Required("mask", route.mask);
    members.Required("nextHop", route.nextHop);
    members.Optional("metric", route.metric);
}

template <typename Members>
void ListMembers(Members& members, Like<Account> auto& account) {
    members.Required("name", account.name);
    members.Required("password", account.password);
    members.Optional("mayJoin", account.mayJoin);
    members.Optional("mayMove", account.mayMove);
}

template <typename Members>
void ListMembers(Members& members, Like<OrganizationalUnit> auto& unit) {
    members.Required("name", unit.name);
    members.Optional("computers", unit.computers);
    members.Optional("units", unit.units);
}

template <typename Members>
void ListMembers(Members& members, Like<Domain> auto& domain) {
    members.Required("dnsName", domain.dnsName);
    members.Required("flatName", domain.flatName);
    members.Optional("reachable", domain.reachable);
    members.Optional("accounts", domain.accounts);
    members.Optional("computers", domain.computers);
    members.Optional("units", domain.units);
}

template <typename Members>
void ListMembers(Members& members, Like<OperatingSystem> auto& system) {
    members.Optional("libCrypto", system.libCrypto);
    members.Optional("comSecuritySet", system.comSecuritySet);
    members.Optional("adapterChangesNeedRestart", system.adapterChangesNeedRestart);
}

template <typename Members>
void ListMembers(Members& members, Like<State> auto& state) {
    members.Required("computerName", state.computerName);
    members.Optional("pendingComputerName", state.pendingComputerName);
    members.Optional("hostName", state.hostName);
    members.Optional("membership", state.membership);
    members.Optional("pendingMembership", state.pendingMembership);
    members.Optional("dnsSuffixes", state.dnsSuffixes);
    members.Optional("adapters", state.adapters);
    members.Optional("routes", state.routes);
    members.Optional("registry", state.registry);
    members.Optional("domains", state.domains);
    members.Optional("hosts", state.hosts);
    members.Optional("system", state.system);
}

}  // namespace machine::file
