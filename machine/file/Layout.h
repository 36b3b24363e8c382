// The members of a machine file in their order: one list for reading (file::Members) and writing
// (file::MemberWriter). What is read and written in a way of its own stands with the two.
#pragma once

#include <array>
#include <concepts>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>

#include "machine/AdapterProperties.h"
#include "machine/State.h"

namespace machine::file {

/// A value of the type that is read, or a constant one that is written.
template <typename Value, typename Type>
concept Like = std::same_as<std::remove_const_t<Value>, Type>;

/// The values of an enumeration and their names.
template <typename Choice>
using Names = std::pair<Choice, std::string_view>;

constexpr std::array kCryptoLibraries = {
    Names<CryptoLibrary>{CryptoLibrary::kPresent, "present"},
    Names<CryptoLibrary>{CryptoLibrary::kAbsent, "absent"},
    Names<CryptoLibrary>{CryptoLibrary::kWithoutExport, "withoutExport"}};
constexpr std::array kConditions = {Names<Condition>{Condition::kConnected, "connected"},
                                    Names<Condition>{Condition::kUnplugged, "unplugged"},
                                    Names<Condition>{Condition::kDisabled, "disabled"},
                                    Names<Condition>{Condition::kInTeam, "inTeam"},
                                    Names<Condition>{Condition::kBehindSwitch, "behindSwitch"}};

constexpr const auto& NamesOf(CryptoLibrary /*type*/) {
    return kCryptoLibraries;
}
constexpr const auto& NamesOf(Condition /*type*/) {
    return kConditions;
}

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
            } else if constexpr (std::is_same_v<decltype(member), std::string Adapter::*>) {
                members.Shown(name, adapter.*member);
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
    members.Optional("mayReuse", account.mayReuse);
    members.Optional("quota", account.quota);
}

template <typename Members>
void ListMembers(Members& members, Like<OrganizationalUnit> auto& unit) {
    members.Required("name", unit.name);
    members.Optional("computers", unit.computers);
    members.Optional("units", unit.units);
}

template <typename Members>
void ListMembers(Members& members, Like<ObjectOwner> auto& owner) {
    members.Required("computer", owner.computer);
    members.Required("account", owner.account);
}

template <typename Members>
void ListMembers(Members& members, Like<Domain> auto& domain) {
    members.Required("dnsName", domain.dnsName);
    members.Required("flatName", domain.flatName);
    members.Optional("reachable", domain.reachable);
    members.Optional("joinAnswer", domain.joinAnswer);
    members.Optional("connectedAs", domain.connectedAs);
    members.Optional("accounts", domain.accounts);
    members.Optional("computers", domain.computers);
    members.Optional("units", domain.units);
    members.Optional("owners", domain.owners);
}

template <typename Members>
void ListMembers(Members& members, Like<Versions> auto& versions) {
    members.Optional("staticOnStatic", versions.staticOnStatic);
    members.Optional("refusedRoute", versions.refusedRoute);
    members.Optional("notElevated", versions.notElevated);
    members.Optional("leaseTakes", versions.leaseTakes);
    members.Optional("staticTakes", versions.staticTakes);
}

template <typename Members>
void ListMembers(Members& members, Like<OperatingSystem> auto& system) {
    members.Optional("libCrypto", system.libCrypto);
    members.Optional("comSecuritySet", system.comSecuritySet);
    members.Optional("adapterChangesNeedRestart", system.adapterChangesNeedRestart);
    members.Optional("elevated", system.elevated);
    members.Optional("lockedCalls", system.lockedCalls);
    members.Optional("workstationService", system.workstationService);
    members.Optional("versions", system.versions);
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
