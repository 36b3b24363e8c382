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
        rows.push_back({{"Destination", Type::Text, route.destination},
                        {"Mask", Type::Text, route.mask},
                        {"NextHop", Type::Text, route.nextHop},
                        {"Metric1", Type::SInt32, route.metric}});
    }
    return rows;
}

std::vector<Properties> ComputerRows(const State& state, OptionalIndex /*index*/) {
    const Membership& membership = model::ShownMembership(state);
    return {
        {{"Name", Type::Text, state.computerName},
         {"Caption", Type::Text, state.computerName},
         {"DNSHostName", Type::Text, state.hostName},
         {"Domain", Type::Text, membership.member ? membership.dnsDomain : membership.workgroup},
         {"PartOfDomain", Type::Boolean, membership.member},
         {"Workgroup", Type::Text, membership.member ? Value() : Value(membership.workgroup)}}};
}

// The names and types of a class are those of a row of a machine that has one of everything.
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
    static const std::vector<Class> classes = {
        {"Win32_ComputerSystem", "Name", Shape(ComputerRows), ComputerRows, ComputerMethods()},
        {"Win32_NetworkAdapterConfiguration", "Index", Shape(ConfigurationRows), ConfigurationRows,
         AdapterMethods()},
        {"Win32_NetworkAdapter", "DeviceID", Shape(HardwareRows), HardwareRows, {}},
        {"Win32_IP4PersistedRouteTable", "Destination", Shape(RouteRows), RouteRows, {}},
    };
    const auto found = std::ranges::find_if(
        classes, [name](const Class& definition) { return EqualNoCase(definition.name, name); });
    return found == classes.end() ? nullptr : &*found;
}

const Method* FindMethod(const Class& definition, std::string_view name) {
    const auto found = std::ranges::find_if(definition.methods, [name](const Method& method) {
        return EqualNoCase(method.name, name);
    });
    return found == definition.methods.end() ? nullptr : &*found;
}

}  // namespace machine::cim
