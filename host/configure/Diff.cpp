#include "host/configure/Diff.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <utility>

#include "common/util/Strings.h"
#include "host/configure/Values.h"
#include "host/reading/SettingNames.h"

namespace host::configure {

namespace {

using Texts = std::vector<std::string>;

class Comparison {
public:
    explicit Comparison(std::string where) : where_(std::move(where)) {}

    void Text(const char* what, const std::string& before, const std::string& after) {
        if (before != after) {
            changes_.push_back(
                {where_, what, before.empty() ? "none" : before, after.empty() ? "none" : after});
        }
    }
    void Text(const char* what, const std::optional<std::string>& before,
              const std::optional<std::string>& after) {
        Text(what, before.value_or(""), after.value_or(""));
    }
    void List(const char* what, const Texts& before, const Texts& after) {
        Text(what, ListText(before), ListText(after));
    }
    void List(const char* what, const std::optional<Texts>& before,
              const std::optional<Texts>& after) {
        List(what, before.value_or(Texts()), after.value_or(Texts()));
    }
    void Flag(const char* what, const std::optional<bool>& before,
              const std::optional<bool>& after) {
        const auto text = [](const std::optional<bool>& flag) {
            return std::string(!flag ? "" : *flag ? "on" : "off");
        };
        Text(what, text(before), text(after));
    }
    /// Members gone and members new; copies count.
    void Members(const char* what, Texts before, Texts after) {
        std::ranges::sort(before);
        std::ranges::sort(after);
        Texts gone;
        Texts added;
        std::ranges::set_difference(before, after, std::back_inserter(gone));
        std::ranges::set_difference(after, before, std::back_inserter(added));
        for (std::string& member : gone) {
            changes_.push_back({where_, what, std::move(member), ""});
        }
        for (std::string& member : added) {
            changes_.push_back({where_, what, "", std::move(member)});
        }
    }

    void MoveTo(std::vector<Change>& changes) {
        std::move(changes_.begin(), changes_.end(), std::back_inserter(changes));
    }

private:
    std::string where_;
    std::vector<Change> changes_;
};

std::optional<std::string> Coming(const std::optional<machine::Membership>& membership) {
    return membership ? std::optional(MembershipText(*membership)) : std::nullopt;
}

void CompareMachine(const machine::State& before, const machine::State& after,
                    std::vector<Change>& changes) {
    Comparison machine("machine");
    machine.Text("computer name", before.computerName, after.computerName);
    machine.Text("computer name after the restart", before.pendingComputerName,
                 after.pendingComputerName);
    machine.Text("host name", before.hostName, after.hostName);
    machine.Text("membership", MembershipText(before.membership), MembershipText(after.membership));
    machine.Text("membership after the restart", Coming(before.pendingMembership),
                 Coming(after.pendingMembership));
    machine.List("DNS suffixes", before.dnsSuffixes, after.dnsSuffixes);
    machine.MoveTo(changes);
}

void CompareAdapter(const machine::Adapter& before, const machine::Adapter& after,
                    std::vector<Change>& changes) {
    Comparison adapter(AdapterLabel(after));
    adapter.Flag("DHCP", before.dhcpEnabled, after.dhcpEnabled);
    adapter.List("IP addresses", AddressesOf(before), AddressesOf(after));
    adapter.List("gateways", before.gateways, after.gateways);
    adapter.List("DNS servers", before.dnsServers, after.dnsServers);
    adapter.List("DNS servers set by hand", before.staticDns, after.staticDns);
    adapter.Text("DNS domain", before.dnsDomain, after.dnsDomain);
    adapter.Text("DNS host name", before.dnsHostName, after.dnsHostName);
    adapter.Flag("IP", before.ipEnabled, after.ipEnabled);
    adapter.MoveTo(changes);
}

/// Every computer object of a domain with the container that holds it.
void ListObjects(const machine::TextList& computers,
                 const std::vector<machine::OrganizationalUnit>& units, const std::string& path,
                 Texts& objects) {
    for (const std::string& computer : computers) {
        objects.push_back(computer + " in " + (path.empty() ? "Computers" : path));
    }
    for (const machine::OrganizationalUnit& unit : units) {
        ListObjects(unit.computers, unit.units, path.empty() ? unit.name : path + "/" + unit.name,
                    objects);
    }
}

Texts ObjectsOf(const machine::Domain& domain) {
    Texts objects;
    ListObjects(domain.computers, {}, {}, objects);
    for (const machine::OrganizationalUnit& unit : domain.units) {
        ListObjects(unit.computers, unit.units, unit.name, objects);
    }
    return objects;
}

Texts RegistryKeys(const machine::State& state) {
    Texts keys;
    for (const machine::RegistryKey& key : state.registry) {
        for (const machine::RegistryValue& value : key.values) {
            keys.push_back(key.path + ", value " + value.name + ", " +
                           std::to_string(value.data.size()) + " bytes");
        }
        if (key.values.empty()) {
            keys.push_back(key.path);
        }
    }
    return keys;
}

void CompareDomains(const machine::State& before, const machine::State& after,
                    std::vector<Change>& changes) {
    for (const machine::Domain& domain : after.domains) {
        Comparison directory("domain " + domain.dnsName);
        Texts objectsBefore;
        for (const machine::Domain& earlier : before.domains) {
            if (earlier.dnsName == domain.dnsName) {
                objectsBefore = ObjectsOf(earlier);
            }
        }
        directory.Members("computer object", std::move(objectsBefore), ObjectsOf(domain));
        directory.MoveTo(changes);
    }
}

}  // namespace

std::vector<Change> Compare(const machine::State& before, const machine::State& after) {
    std::vector<Change> changes;
    CompareMachine(before, after, changes);
    std::set<std::uint32_t> indexes;
    for (const machine::State* const state : {&before, &after}) {
        for (const machine::Adapter& adapter : state->adapters) {
            indexes.insert(adapter.index);
        }
    }
    for (const std::uint32_t index : indexes) {
        const machine::Adapter* const old = AdapterOf(before, index);
        const machine::Adapter* const now = AdapterOf(after, index);
        if (old != nullptr && now != nullptr) {
            CompareAdapter(*old, *now, changes);
        } else if (old != nullptr) {
            changes.push_back({AdapterLabel(*old), "adapter", "there", ""});
        } else if (now != nullptr) {
            changes.push_back({AdapterLabel(*now), "adapter", "", "there"});
        }
    }
    Comparison routes("routes");
    routes.Members("", AllRoutes(before), AllRoutes(after));
    routes.MoveTo(changes);
    CompareDomains(before, after, changes);
    Comparison registry("registry");
    registry.Members("", RegistryKeys(before), RegistryKeys(after));
    registry.MoveTo(changes);
    return changes;
}

std::vector<Change> Effective(std::vector<Change> changes) {
    std::erase_if(changes,
                  [](const Change& change) { return change.what.ends_with("after the restart"); });
    return changes;
}

}  // namespace host::configure
