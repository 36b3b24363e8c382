#include "machine/cim/Schema.h"

#include <algorithm>

#include "machine/Text.h"

namespace machine::cim {
namespace {

Value Text(const std::optional<std::string>& text) {
    return text ? Value(*text) : Value();
}

// WMI delivers a list without elements as null.
Value List(const std::optional<TextList>& list) {
    return list && !list->empty() ? Value(*list) : Value();
}

Value Number(std::uint32_t number) {
    return static_cast<std::int32_t>(number);
}

// "[00000001] Example Adapter" is the caption of the description "Example Adapter".
Value DescriptionOf(const Adapter& adapter) {
    if (!adapter.caption) {
        return {};
    }
    const auto bracket = adapter.caption->find("] ");
    return bracket == std::string::npos ? *adapter.caption : adapter.caption->substr(bracket + 2);
}

std::vector<Properties> ConfigurationRows(const State& state, OptionalIndex index) {
    std::vector<Properties> rows;
    for (const Adapter& adapter : state.adapters) {
        if (index && adapter.index != *index) {
            continue;
        }
        const Value suffixes = adapter.ipEnabled ? List(state.dnsSuffixes) : Value();
        rows.push_back({{"Index", Type::UInt32, Number(adapter.index)},
                        {"Caption", Type::Text, Text(adapter.caption)},
                        {"Description", Type::Text, DescriptionOf(adapter)},
                        {"SettingID", Type::Text, Text(adapter.settingId)},
                        {"IPEnabled", Type::Boolean, adapter.ipEnabled},
                        {"DHCPEnabled", Type::Boolean,
                         adapter.dhcpEnabled ? Value(*adapter.dhcpEnabled) : Value()},
                        {"IPAddress", Type::Texts, List(adapter.ipAddress)},
                        {"IPSubnet", Type::Texts, List(adapter.ipSubnet)},
                        {"DefaultIPGateway", Type::Texts, List(adapter.gateways)},
                        {"DNSServerSearchOrder", Type::Texts, List(adapter.dnsServers)},
                        {"DNSDomainSuffixSearchOrder", Type::Texts, suffixes},
                        {"DNSDomain", Type::Text, Text(adapter.dnsDomain)},
                        {"DNSHostName", Type::Text, Text(adapter.dnsHostName)},
                        {"MACAddress", Type::Text, Text(adapter.macAddress)}});
    }
    return rows;
}

std::vector<Properties> AdapterRows(const State& state, OptionalIndex index) {
    std::vector<Properties> rows;
    for (const Adapter& adapter : state.adapters) {
        if (index && adapter.index != *index) {
            continue;
        }
        rows.push_back({{"DeviceID", Type::Text, std::to_string(adapter.index)},
                        {"Index", Type::UInt32, Number(adapter.index)},
                        {"Caption", Type::Text, Text(adapter.caption)},
                        {"Description", Type::Text, DescriptionOf(adapter)},
                        {"Name", Type::Text, DescriptionOf(adapter)},
                        {"Manufacturer", Type::Text, Text(adapter.manufacturer)},
                        {"AdapterType", Type::Text, Text(adapter.adapterType)},
                        {"MACAddress", Type::Text, Text(adapter.macAddress)},
                        {"PNPDeviceID", Type::Text, Text(adapter.pnpDeviceId)},
                        {"GUID", Type::Text, Text(adapter.settingId)},
                        {"NetConnectionID", Type::Text, adapter.connectionName},
                        {"NetEnabled", Type::Boolean, adapter.ipEnabled}});
    }
    return rows;
}

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
    const Membership& membership = state.membership;
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
        {"Win32_NetworkAdapter", "DeviceID", Shape(AdapterRows), AdapterRows, {}},
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
