#include "host/check/MachineCheck.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "common/util/Strings.h"
#include "host/check/MachineRouteCheck.h"
#include "host/reading/Settings.h"
#include "machine/model/AdapterView.h"
#include "machine/model/Address.h"
#include "machine/model/Network.h"

namespace host::check {

namespace {

namespace model = machine::model;
using machine::Adapter;
using reading::Setting;
using Wish = Setting::Kind;
using Texts = std::vector<std::string>;

const char* WhyWithoutIp(const Adapter& adapter) {
    switch (adapter.condition) {
        case machine::Condition::kUnplugged:
            return "is unplugged";
        case machine::Condition::kDisabled:
            return "is disabled";
        case machine::Condition::kInTeam:
            return "is in a team";
        case machine::Condition::kBehindSwitch:
            return "is behind a virtual switch";
        case machine::Condition::kConnected:
            break;
    }
    return "has no TCP/IP";
}

Texts ListOf(const std::optional<machine::TextList>& list) {
    return list.value_or(Texts());
}

class MachineCheck {
public:
    MachineCheck(const reading::File& file, const machine::State& machine, Findings& findings)
        : settings_(reading::SettingsOf(file)), machine_(machine), findings_(findings) {
        std::erase_if(settings_, [](const Setting& setting) { return setting.leftAlone; });
        for (const Setting& setting : settings_) {
            if (setting.kind == Wish::kAdapter) {
                sections_.push_back(&setting);
            }
        }
        for (const Adapter& adapter : machine.adapters) {
            if (model::IsPci(adapter)) {
                (model::HasIp(adapter) ? bindable_ : others_).push_back(&adapter);
                all_.push_back(&adapter);
            }
        }
    }

    void Check() {
        if (!sections_.empty()) {
            CheckBinding();
            CheckIPv6();
        }
        for (const Setting& setting : settings_) {
            if (const Adapter* const adapter = BoundTo(setting)) {
                CheckDhcp(setting, *adapter);
                CheckGateways(setting, *adapter);
                CheckStatic(setting, *adapter);
            }
            if (setting.kind == Wish::kDnsSuffixes) {
                CheckSuffixes(setting);
            }
        }
        CheckElevation();
        CheckRoutesOnMachine(settings_, machine_, bindable_, findings_);
    }

private:
    void CheckBinding();
    void CheckIPv6();
    void CheckDhcp(const Setting& setting, const Adapter& adapter);
    void CheckGateways(const Setting& setting, const Adapter& adapter);
    void CheckStatic(const Setting& setting, const Adapter& adapter);
    void CheckSuffixes(const Setting& setting);
    void CheckElevation();

    void WarnOfIPv6Gateway(const Setting& setting, const Adapter& adapter,
                           const std::string& gateway, const char* effect);

    /// The adapter that the setting's section gets; null for none.
    const Adapter* BoundTo(const Setting& setting) const {
        return setting.adapter && *setting.adapter < bindable_.size() ? bindable_[*setting.adapter]
                                                                      : nullptr;
    }

    void Warn(Code code, const Setting& setting, std::string message, std::string remedy) {
        findings_.Warning(code, setting.at.place, std::move(message), std::move(remedy));
    }

    std::vector<Setting> settings_;
    const machine::State& machine_;
    Findings& findings_;
    std::vector<const Setting*> sections_;
    std::vector<const Adapter*> bindable_;  // PCI, with IP
    std::vector<const Adapter*> others_;    // PCI, without
    std::vector<const Adapter*> all_;       // PCI
};

void MachineCheck::CheckBinding() {
    if (bindable_.empty()) {
        Warn("no-pci-adapter", *sections_.front(),
             "the machine has no PCI adapter with IP (adapters of Hyper-V and Azure guests, teams "
             "and virtual switches are not PCI): every adapter section fails, after everything "
             "before "
             "it has been done",
             "give the machine a PCI adapter that is in use, or leave its adapters to other means "
             "and take the sections out");
        return;
    }
    if (sections_.size() > bindable_.size()) {
        Warn("too-few-adapters", *sections_[bindable_.size()],
             "no PCI adapter with IP is left for this section: the module fails here, after "
             "everything before it has been done",
             others_.empty() ? "take the section out"
                             : "take the section out, or free " + AdapterName(*others_.front()) +
                                   " for it, which " + WhyWithoutIp(*others_.front()));
    }
    for (std::size_t i = 0; i < std::min(sections_.size(), bindable_.size()); ++i) {
        if (all_[i] == bindable_[i]) {
            continue;
        }
        Warn(
            "shifted-adapter", *sections_[i],
            "the section gets " + AdapterName(*bindable_[i]) + " and not " + AdapterName(*all_[i]) +
                ": sections take the PCI adapters with IP in their order, "
                "and " +
                AdapterName(*others_.front()) + " " + WhyWithoutIp(*others_.front()),
            "make the sections those of the adapters with IP, in their order, or give that adapter "
            "IP before the request");
    }
}

void MachineCheck::CheckIPv6() {
    for (const Adapter* const adapter : bindable_) {
        for (const std::string& gateway : ListOf(adapter->gateways)) {
            if (model::IsIPv6(gateway) && util::IsLetter(gateway.front())) {
                WarnOfIPv6Gateway(*sections_.front(), *adapter, gateway,
                                  "looks up as a host's name: every request with an adapter "
                                  "section fails with 11001");
            }
        }
        const Texts addresses = ListOf(adapter->ipAddress);
        if (!addresses.empty() && model::IsIPv6(addresses.front())) {
            Warn("ipv6-address", *sections_.front(),
                 AdapterName(*adapter) + " has no IPv4 address before " + addresses.front() +
                     ": the module reads that one, and an address that begins with a letter fails "
                     "every request with an adapter section (11001)",
                 "give the adapter an IPv4 address, or take IPv6 off it");
        }
    }
}

void MachineCheck::CheckGateways(const Setting& setting, const Adapter& adapter) {
    for (const std::string& gateway : ListOf(adapter.gateways)) {
        if (setting.kind == Wish::kGateways && model::IsIPv6(gateway) &&
            !util::IsLetter(gateway.front())) {
            WarnOfIPv6Gateway(setting, adapter, gateway,
                              "reads as 255.255.255.255: it sets these on every request");
        }
    }
}

void MachineCheck::WarnOfIPv6Gateway(const Setting& setting, const Adapter& adapter,
                                     const std::string& gateway, const char* effect) {
    Warn("ipv6-gateway", setting,
         AdapterName(adapter) + " has the IPv6 gateway " + gateway + ", which the module " + effect,
         "switch router discovery off on that interface (netsh interface ipv6 set interface NAME "
         "routerdiscovery=disabled) or take IPv6 off the adapter");
}

void MachineCheck::CheckDhcp(const Setting& setting, const Adapter& adapter) {
    if (setting.kind != Wish::kDhcp || adapter.dhcpEnabled.value_or(false)) {
        return;
    }
    const Texts lease = adapter.dhcpLease ? adapter.dhcpLease->gateways : Texts();
    for (const std::string& gateway : ListOf(adapter.gateways)) {
        if (!model::IsIPv6(gateway) && std::ranges::find(lease, gateway) == lease.end()) {
            Warn("gateway-left-behind", setting,
                 "EnableDHCP leaves the gateway " + gateway + " of " + AdapterName(adapter) +
                     ", which was set by hand, beside the lease's: two default routes, and the "
                     "module cannot remove the old one",
                 "route DELETE 0.0.0.0 mask 0.0.0.0 " + gateway + " after the request");
        }
    }
    const auto servers = std::ranges::find_if(settings_, [&setting](const Setting& other) {
        return other.kind == Wish::kDnsServers && other.adapter == setting.adapter;
    });
    const Texts leased = adapter.dhcpLease ? adapter.dhcpLease->dnsServers : Texts();
    if (servers != settings_.end() && adapter.staticDns.empty() && !leased.empty() &&
        reading::WantedTexts(*servers) == leased) {
        Warn("lease-decides", *servers,
             "these are the lease's servers too: where the lease takes longer than the module "
             "needs to ask, they are set by hand, and where it is there at once they are not",
             "DNS-Server-Count=0 leaves them to the lease");
    }
}

void MachineCheck::CheckStatic(const Setting& setting, const Adapter& adapter) {
    const Texts wanted = reading::WantedTexts(setting);
    const Texts present = ListOf(adapter.ipAddress);
    if (setting.kind != Wish::kAddresses || adapter.dhcpEnabled != false || wanted.empty() ||
        present.empty() || wanted.front().starts_with(present.front() + "/")) {
        return;
    }
    const bool isCertain = machine_.system.versions.staticOnStatic == model::kDhcpNotConfigured;
    Warn("static-on-static", setting,
         std::string(isCertain ? "on this" : "on some versions of") +
             " Windows EnableStatic answers 81 here although it sets the address; the module then "
             "stops with Failure 4, and gateways and DNS are not attempted",
         "send the file again: with the address in place the module gets past this");
}

void MachineCheck::CheckSuffixes(const Setting& setting) {
    const Texts policy = model::PolicySuffixes(machine_);
    const Texts wanted = reading::WantedTexts(setting);
    if (policy.empty() || wanted == policy) {
        return;
    }
    std::string list;
    for (const std::string& suffix : policy) {
        list += (list.empty() ? "" : ",") + suffix;
    }
    Warn("policy-suffixes", setting,
         "a policy sets the suffixes " + list +
             ", and they win over these: the method succeeds, the list in use stays, and every "
             "request sets it again",
         "change the policy, or set DNS-SuffixSearchOrder=" + list);
}

void MachineCheck::CheckElevation() {
    if (machine_.system.elevated || settings_.empty()) {
        return;
    }
    Warn("not-elevated", settings_.front(),
         "the agent has no administrator's token: methods of adapters answer " +
             std::to_string(machine_.system.versions.notElevated) +
             ", those that rename, join and leave 5, and route exits with 1; nothing can be "
             "changed",
         "let the agent run as a service or elevated");
}

}  // namespace

std::string AdapterName(const Adapter& adapter) {
    const std::string name =
        adapter.connectionName.empty() ? adapter.caption.value_or("") : adapter.connectionName;
    return "adapter " + std::to_string(adapter.index) + (name.empty() ? "" : " " + Quoted(name));
}

void CheckOnMachine(const reading::File& file, const machine::State& machine, Findings& findings) {
    MachineCheck(file, machine, findings).Check();
    findings.Sort();
}

}  // namespace host::check
