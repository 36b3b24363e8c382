#include "machine/State.h"

#include <algorithm>
#include <utility>

#include "machine/model/AdapterView.h"
#include "machine/model/Identity.h"
#include "machine/model/Network.h"

namespace machine {

RegistryValue RegistryValue::Text(std::string_view name, std::string_view text) {
    std::string data(text);
    data.push_back('\0');
    return {std::string(name), 1, std::move(data)};
}

RegistryValue RegistryValue::Number(std::string_view name, std::uint32_t number) {
    std::string data;
    for (int shift = 0; shift < 32; shift += 8) {
        data.push_back(static_cast<char>((number >> shift) & 0xFF));
    }
    return {std::string(name), 4, std::move(data)};
}

Membership Membership::OfWorkgroup(std::string_view name) {
    Membership membership;
    membership.workgroup = name;
    return membership;
}

Membership Membership::OfDomain(std::string_view flatName, std::string_view dnsName) {
    Membership membership;
    membership.member = true;
    membership.workgroup.clear();
    membership.domain = flatName;
    membership.dnsDomain = dnsName;
    return membership;
}

void ApplyRestart(State& state) {
    if (state.pendingComputerName) {
        state.hostName = *std::exchange(state.pendingComputerName, std::nullopt);
        state.computerName = model::NetBiosName(state.hostName);
        for (Adapter& adapter : state.adapters) {
            if (adapter.dnsHostName) {
                adapter.dnsHostName = state.hostName;
            }
        }
    }
    if (state.pendingMembership) {
        state.membership = *std::exchange(state.pendingMembership, std::nullopt);
    }
    state.system.lockedCalls = 0;
    for (Adapter& adapter : state.adapters) {
        if (model::HasIp(adapter) && adapter.dhcpEnabled.value_or(false)) {
            model::TakeLease(state, adapter);
        }
    }
}

Adapter* FindAdapter(State& state, std::uint32_t index) {
    const auto found = std::ranges::find(state.adapters, index, &Adapter::index);
    return found == state.adapters.end() ? nullptr : &*found;
}

}  // namespace machine
