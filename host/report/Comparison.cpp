#include "host/report/Comparison.h"

#include <algorithm>
#include <iterator>
#include <optional>

#include "host/configure/Values.h"
#include "machine/model/AdapterView.h"
#include "machine/model/Address.h"
#include "machine/model/Routes.h"

namespace host::report {

namespace {

using machine::TextList;

bool Has(const TextList& list, const std::string& text) {
    return std::ranges::find(list, text) != list.end();
}

/// The members of a list that stand in another too.
TextList Common(const TextList& members, const TextList& asked) {
    TextList common;
    std::ranges::copy_if(members, std::back_inserter(common),
                         [&asked](const std::string& text) { return Has(asked, text); });
    return common;
}

/// `missing` is what a member is that the other list does not have.
std::vector<Entry> Marked(const TextList& list, const TextList& other, Mark missing) {
    const TextList here = Common(list, other);
    const TextList there = Common(other, list);
    std::vector<Entry> entries;
    std::size_t common = 0;
    for (const std::string& text : list) {
        if (!Has(other, text)) {
            entries.push_back({text, missing});
            continue;
        }
        const bool stays = common < there.size() && here[common] == there[common];
        entries.push_back({text, stays ? Mark::kSame : Mark::kMoved});
        ++common;
    }
    return entries;
}

void Add(Part& part, const char* name, const TextList& before, const TextList& after) {
    part.before.push_back({name, Marked(before, after, Mark::kGone)});
    part.after.push_back({name, Marked(after, before, Mark::kNew)});
}

TextList WithPending(TextList list, const std::string& pending) {
    if (!pending.empty()) {
        list.push_back(pending + " (after a restart)");
    }
    return list;
}

TextList NamesOf(const machine::State& state) {
    return WithPending({state.computerName}, state.pendingComputerName.value_or(""));
}

TextList MembershipsOf(const machine::State& state) {
    const auto& pending = state.pendingMembership;
    return WithPending({configure::MembershipText(state.membership)},
                       pending ? configure::MembershipText(*pending) : "");
}

TextList UnitsOf(const machine::State& state) {
    const std::string unit =
        configure::UnitOf(state, state.membership.dnsDomain, state.computerName);
    return unit.empty() ? TextList() : TextList{unit};
}

std::string RemarkOf(const machine::Adapter& adapter) {
    switch (adapter.condition) {
        case machine::Condition::kConnected:
            return adapter.ipEnabled ? "" : "TCP/IP is not bound to it";
        case machine::Condition::kUnplugged:
            return "unplugged";
        case machine::Condition::kDisabled:
            return "disabled";
        case machine::Condition::kInTeam:
            return "in a team";
        case machine::Condition::kBehindSwitch:
            break;
    }
    return "behind a virtual switch";
}

/// The index of the adapter that reaches the route's gateway.
std::optional<std::uint32_t> ReachedBy(const machine::State& state,
                                       const machine::PersistedRoute& route) {
    const auto gateway = machine::model::ParseAddress(route.nextHop);
    const auto found = std::ranges::find_if(state.adapters, [&](const machine::Adapter& adapter) {
        return gateway && machine::model::Reaches(adapter, *gateway);
    });
    return found == state.adapters.end() ? std::nullopt : std::optional(found->index);
}

class Routes {
public:
    Routes(const machine::State& before, const machine::State& after)
        : before_(before), after_(after) {}

    /// The texts of the state's routes that belong to the adapter; without one, those of none.
    TextList Of(const machine::State& state, std::optional<std::uint32_t> adapter) const {
        machine::State some;
        for (const machine::PersistedRoute& route : state.routes) {
            const auto reached = ReachedBy(before_, route);
            if ((reached ? reached : ReachedBy(after_, route)) == adapter) {
                some.routes.push_back(route);
            }
        }
        return configure::AllRoutes(some);
    }

private:
    const machine::State& before_;
    const machine::State& after_;
};

}  // namespace

bool Part::Changes() const {
    const auto differs = [](const Group& group) {
        return std::ranges::any_of(group.entries,
                                   [](const Entry& entry) { return entry.mark != Mark::kSame; });
    };
    return std::ranges::any_of(before, differs) || std::ranges::any_of(after, differs);
}

std::vector<Part> CompareParts(const machine::State& before, const machine::State& after) {
    const Routes routes(before, after);
    std::vector<Part> parts;
    Part& whole = parts.emplace_back(Part{"Machine " + before.computerName, "", false, {}, {}});
    Add(whole, "Computer name", NamesOf(before), NamesOf(after));
    Add(whole, "Membership", MembershipsOf(before), MembershipsOf(after));
    Add(whole, "Unit", UnitsOf(before), UnitsOf(after));
    Add(whole, "DNS suffixes", machine::model::ShownSuffixes(before),
        machine::model::ShownSuffixes(after));
    Add(whole, "Other persistent routes", routes.Of(before, {}), routes.Of(after, {}));
    for (const machine::Adapter& old : before.adapters) {
        const machine::Adapter* const found = configure::AdapterOf(after, old.index);
        const machine::Adapter& now = found == nullptr ? old : *found;
        Part& part =
            parts.emplace_back(Part{configure::AdapterLabel(old), RemarkOf(old), true, {}, {}});
        const auto mode = [](const machine::Adapter& adapter) {
            return TextList{adapter.dhcpEnabled.value_or(false) ? "by DHCP" : "static"};
        };
        Add(part, "Addressing", mode(old), mode(now));
        Add(part, "IP addresses", configure::AddressesOf(old), configure::AddressesOf(now));
        Add(part, "Gateways", old.gateways.value_or(TextList()), now.gateways.value_or(TextList()));
        Add(part, "DNS servers", old.dnsServers.value_or(TextList()),
            now.dnsServers.value_or(TextList()));
        Add(part, "Persistent routes", routes.Of(before, old.index), routes.Of(after, old.index));
    }
    // What neither side has says nothing.
    for (Part& part : parts) {
        for (std::size_t i = part.before.size(); i-- > 0;) {
            const auto at = static_cast<std::ptrdiff_t>(i);
            if (part.before[i].entries.empty() && part.after[i].entries.empty()) {
                part.before.erase(part.before.begin() + at);
                part.after.erase(part.after.begin() + at);
            }
        }
    }
    return parts;
}

}  // namespace host::report
