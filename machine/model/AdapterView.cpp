#include "machine/model/AdapterView.h"

#include <algorithm>
#include <string_view>

#include "machine/Text.h"
#include "machine/model/RegistryView.h"

namespace machine::model {
namespace {

void AddOnce(TextList& list, const std::string& text) {
    const auto isSame = [&text](const std::string& other) { return EqualNoCase(other, text); };
    if (!text.empty() && std::ranges::none_of(list, isSame)) {
        list.push_back(text);
    }
}

}  // namespace

bool HasIp(const Adapter& adapter) {
    // Platform knowledge: since Vista an adapter that is unplugged or disabled has IPEnabled false,
    // and so has a card below a team, a bridge or a virtual switch. Seen in one project: such an
    // adapter takes no settings.
    return adapter.condition == Condition::kConnected && adapter.ipEnabled;
}

bool IsPci(const Adapter& adapter) {
    return adapter.pnpDeviceId && adapter.pnpDeviceId->starts_with("PCI");
}

Adapter ShownAdapter(const Adapter& adapter) {
    Adapter shown = adapter;
    if (HasIp(adapter)) {
        return shown;
    }
    // SettingID stays; MACAddress and DNSHostName are NULL (both seen in a public dump), and so is
    // AdapterType where the adapter is not active (platform knowledge).
    shown.ipEnabled = false;
    shown.macAddress.reset();
    shown.dnsHostName.reset();
    shown.dnsDomain.reset();
    shown.ipAddress.reset();
    shown.ipSubnet.reset();
    shown.gateways.reset();
    shown.dnsServers.reset();
    if (adapter.condition != Condition::kConnected) {
        shown.adapterType.reset();
    }
    return shown;
}

TextList PolicySuffixes(const State& state) {
    // Documented: the policy's list wins over the one that SetDNSSuffixSearchOrder writes.
    const auto value = FindValue(state, kDnsPolicyKey, "SearchList");
    TextList suffixes;
    if (value) {
        const std::string_view text =
            std::string_view(value->data).substr(0, value->data.find('\0'));
        for (const std::string& suffix : Split(text, ',')) {
            AddOnce(suffixes, std::string(Trim(suffix)));
        }
    }
    return suffixes;
}

TextList ShownSuffixes(const State& state) {
    if (TextList suffixes = PolicySuffixes(state); !suffixes.empty()) {
        return suffixes;
    }
    if (!state.dnsSuffixes.empty()) {
        return state.dnsSuffixes;
    }
    // Likely in two public dumps: without a list of one's own those of the machine and of its
    // connections.
    TextList suffixes;
    if (state.membership.member) {
        AddOnce(suffixes, state.membership.dnsDomain);
    }
    for (const Adapter& adapter : state.adapters) {
        if (HasIp(adapter)) {
            AddOnce(suffixes, adapter.dnsDomain.value_or(""));
        }
    }
    return suffixes;
}

}  // namespace machine::model
