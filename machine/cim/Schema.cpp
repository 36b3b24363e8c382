#include "machine/cim/Schema.h"

#include <algorithm>

#include "machine/Text.h"
#include "machine/cim/AdapterRows.h"
#include "machine/model/Identity.h"

namespace machine::cim {
namespace {

std::vector<Properties> RouteRows(const State& state, OptionalIndex /*index*/) {
    std::vector<Properties> rows;
    for (const PersistedRoute& route : state.routes) {
        rows.push_back({{"Destination", Type::kText, route.destination},
                        {"Mask", Type::kText, route.mask},
                        {"NextHop", Type::kText, route.nextHop},
                        {"Metric1", Type::kSInt32, route.metric}});
    }
    return rows;
}

std::vector<Properties> ComputerRows(const State& state, OptionalIndex /*index*/) {
    const Membership& membership = model::ShownMembership(state);
    return {
        {{"Name", Type::kText, state.computerName},
         {"Caption", Type::kText, state.computerName},
         {"DNSHostName", Type::kText, state.hostName},
         {"Domain", Type::kText, membership.member ? membership.dnsDomain : membership.workgroup},
         {"PartOfDomain", Type::kBoolean, membership.member},
         {"Workgroup", Type::kText, membership.member ? Value() : Value(membership.workgroup)}}};
}

/// The names and types of a class are those of a row of a machine that has one of everything.
Properties Shape(std::vector<Properties> (*rows)(const State&, OptionalIndex)) {
    State state;
    state.adapters.emplace_back();
    state.routes.emplace_back();
    Properties shape = rows(state, {}).front();
    for (Property& property : shape) {
        property.value = {};
    }
    return shape;
}

}  // namespace

OptionalIndex IndexOf(std::string_view property, const Value& value) {
    const auto* const number = std::get_if<std::int32_t>(&value);
    return number != nullptr && EqualNoCase(property, "Index")
               ? OptionalIndex(static_cast<std::uint32_t>(*number))
               : std::nullopt;
}

const Class* FindClass(std::string_view name) {
    static const std::vector<Class> kClasses = {
        {"Win32_ComputerSystem", "Name", Shape(ComputerRows), ComputerRows, ComputerMethods()},
        {"Win32_NetworkAdapterConfiguration", "Index", Shape(ConfigurationRows), ConfigurationRows,
         AdapterMethods()},
        {"Win32_NetworkAdapter", "DeviceID", Shape(HardwareRows), HardwareRows, {}},
        {"Win32_IP4PersistedRouteTable", "Destination", Shape(RouteRows), RouteRows, {}},
    };
    const auto found = std::ranges::find_if(
        kClasses, [name](const Class& definition) { return EqualNoCase(definition.name, name); });
    return found == kClasses.end() ? nullptr : &*found;
}

const Method* FindMethod(const Class& definition, std::string_view name) {
    const auto found = std::ranges::find_if(definition.methods, [name](const Method& method) {
        return EqualNoCase(method.name, name);
    });
    return found == definition.methods.end() ? nullptr : &*found;
}

}  // namespace machine::cim
