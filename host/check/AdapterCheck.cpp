#include "host/check/AdapterCheck.h"

#include <algorithm>
#include <utility>

#include "common/config/Event.h"
#include "common/util/Strings.h"

namespace host::check {

namespace Event = config::Event;

namespace {

constexpr std::string_view kDnsServer = "DNS-Server";

std::optional<ValueFault> CheckHost(std::string_view item) {
    return CheckAddress(AddressRole::kHost, item);
}

std::optional<ValueFault> CheckMask(std::string_view item) {
    return CheckAddress(AddressRole::kMask, item);
}

std::optional<ValueFault> CheckGateway(std::string_view item) {
    return CheckAddress(AddressRole::kGateway, item);
}

std::optional<ValueFault> CheckDnsServer(std::string_view item) {
    if (item == "0.0.0.0") {
        return ValueFault{Severity::kWarning, "skipped-server",
                          "the module passes over the DNS server \"0.0.0.0\""};
    }
    return CheckAddress(AddressRole::kDnsServer, item);
}

bool IsError(const std::optional<ValueFault>& fault) {
    return fault && fault->severity == Severity::kError;
}

std::string Counted(std::size_t count, const char* one, const char* several) {
    return std::to_string(count) + " " + (count == 1 ? one : several);
}

}  // namespace

void AdapterCheck::Check() {
    if (!Reading().HasDescription()) {
        Found().Error("no-description", HeaderPlace(),
                      "there is no \"Description\": the module sets nothing of this section and "
                      "gives the whole file up where a later section does not fit");
        CheckUnreadEntries();
        return;
    }
    CheckMode();
    if (IsStatic()) {
        CheckAddressing();
    } else {
        for (const char* const key : {"Address", "Netmask", "Gateway"}) {
            ReportUnused(key, "the adapter asks a DHCP server");
        }
    }
    CheckDnsServers(*Reading().Find("DNS-Server-Count"));
    if (const LookUp* const suffixes = SentSuffixes()) {
        CheckList(*suffixes, "the DNS suffixes of the machine", CheckSuffix);
    }
    if (Reading().refused) {
        CheckUnreadEntries();
    }
}

bool AdapterCheck::IsStatic() const {
    const LookUp* const mode = Reading().Find("DHCP");
    return mode != nullptr && mode->Sends(Event::STATIC);
}

const LookUp* AdapterCheck::SentSuffixes() const {
    const LookUp* const suffixes = Reading().Find("DNS-SuffixSearchOrder");
    return suffixes != nullptr && suffixes->Sends(Event::DNS_SUFFIX) ? suffixes : nullptr;
}

void AdapterCheck::CheckMode() {
    const LookUp& mode = *Reading().Find("DHCP");
    const std::string choice = IsStatic() ? "sets static addresses" : "asks a DHCP server";
    if (!mode.found) {
        Found().Warning("reused-text", HeaderPlace(),
                        Reuse(mode) + ", " + Quoted(mode.text) + ", and " + choice);
    } else if (IsStatic() && !util::NoCaseEqual(mode.text, "false")) {
        Found().Warning("odd-switch", ValueOf(mode),
                        Quoted(mode.text) + " is neither true nor false: the module " + choice);
    }
}

void AdapterCheck::CheckAddressing() {
    const LookUp& addresses = *Reading().Find("Address");
    const LookUp& masks = *Reading().Find("Netmask");
    CheckList(addresses, "the addresses", CheckHost);
    CheckList(masks, "the masks", CheckMask);
    CheckNetworks(addresses, masks);
    CheckGateways(*Reading().Find("Gateway"));
}

void AdapterCheck::CheckNetworks(const LookUp& addresses, const LookUp& masks) {
    const std::vector<std::string> hosts = SplitList(addresses.text);
    const std::vector<std::string> subnets = SplitList(masks.text);
    if (hosts.size() != subnets.size()) {
        Found().Error("address-mask-count", OwnValueOf(masks),
                      Counted(hosts.size(), "address", "addresses") + " and " +
                          Counted(subnets.size(), "mask", "masks") +
                          ": Windows refuses lists of different length");
    }
    for (std::size_t i = 0; i < std::min(hosts.size(), subnets.size()); ++i) {
        if (!IsError(CheckHost(hosts[i])) && !IsError(CheckMask(subnets[i]))) {
            networks_.push_back({*ReadAddress(hosts[i]), *ReadAddress(subnets[i])});
        }
    }
}

void AdapterCheck::CheckGateways(const LookUp& gateways) {
    CheckList(gateways, "the gateways", CheckGateway);
    constexpr std::size_t kMostGateways = 5;
    const std::vector<std::string> items = SplitList(gateways.text);
    if (items.size() > kMostGateways) {
        Found().Error("gateway-count", OwnValueOf(gateways),
                      "more than 5 gateways: Windows refuses them");
    }
    std::size_t offset = 0;
    for (const std::string& item : items) {
        const std::size_t start = std::exchange(offset, offset + item.size() + 1);
        if (IsError(CheckGateway(item)) || networks_.empty()) {
            continue;
        }
        const std::uint32_t gateway = *ReadAddress(item);
        const bool reachable =
            std::any_of(networks_.begin(), networks_.end(),
                        [gateway](const Network& network) { return network.Contains(gateway); });
        if (!reachable) {
            Found().Error("gateway-outside",
                          gateways.found
                              ? Source().ValuePlace(gateways.sourceLine, start, item.size())
                              : HeaderPlace(),
                          "the gateway " + Quoted(item) +
                              " is in none of the adapter's networks: Windows refuses it");
        }
    }
}

void AdapterCheck::CheckDnsServers(const LookUp& count) {
    ReportCount(count, 1, {});
    std::vector<std::string> missing;
    bool lastIsMissing = false;
    for (const LookUp& lookUp : Reading().lookUps) {
        if (!lookUp.key.starts_with(kDnsServer) || lookUp.key == count.key) {
            continue;
        }
        lastIsMissing = !lookUp.found;
        if (lookUp.found) {
            ReportValue(lookUp, CheckDnsServer(lookUp.text));
        } else {
            missing.push_back(lookUp.key);
        }
    }
    if (!missing.empty()) {
        ReportMissingServers(count, missing, lastIsMissing);
    }
    if (!Reading().refused) {
        ReportBeyondCount(kDnsServer, count);
    }
}

void AdapterCheck::ReportMissingServers(const LookUp& count,
                                        const std::vector<std::string>& missing,
                                        bool lastIsMissing) {
    const Place place = OwnValueOf(count);
    const std::size_t skipped = missing.size() - (lastIsMissing ? 1 : 0);
    if (skipped > 0) {
        Found().Warning("missing-server", place,
                        "there is no " + Quoted(missing.front()) +
                            (skipped > 1 ? " (and " + std::to_string(skipped - 1) + " more)" : "") +
                            ": the module sets the DNS servers that there are");
    }
    if (lastIsMissing) {
        Found().Warning("missing-last-server", place,
                        "there is no " + Quoted(missing.back()) +
                            ", the last that is asked for: the module then sets neither DNS "
                            "suffixes nor routes of this section");
    }
}

void AdapterCheck::CheckList(const LookUp& lookUp, const char* what, Checker check) {
    if (lookUp.found) {
        CheckItems(lookUp.sourceLine, lookUp.text, check);
        return;
    }
    Finding finding{Severity::kWarning, "reused-text", HeaderPlace(),
                    Reuse(lookUp) + " and sets " + what + " to " + Quoted(lookUp.text)};
    for (const std::string& item : SplitList(lookUp.text)) {
        if (const std::optional<ValueFault> fault = check(item)) {
            finding.severity = std::max(finding.severity, fault->severity);
            finding.message += "; " + fault->message;
            break;
        }
    }
    Found().Add(std::move(finding));
}

void AdapterCheck::CheckItems(std::size_t line, std::string_view text, Checker check) {
    std::size_t offset = 0;
    for (const std::string& item : SplitList(text)) {
        if (const std::optional<ValueFault> fault = check(item)) {
            Found().Add({fault->severity, fault->code,
                         Source().ValuePlace(line, offset, item.size()), fault->message});
        }
        offset += item.size() + 1;
    }
}

/// An entry that the module does not come to, because of another fault, has faults of its own.
void AdapterCheck::CheckUnreadEntry(const IniFile::Entry& entry) {
    const bool usesDhcp = Own("DHCP") != nullptr && util::NoCaseEqual(Own("DHCP")->value, "true");
    const std::pair<const char*, Checker> lists[] = {
        {"Address", CheckHost}, {"Netmask", CheckMask}, {"Gateway", CheckGateway}};
    for (const auto& [key, check] : lists) {
        if (!usesDhcp && util::NoCaseEqual(entry.key, key)) {
            CheckItems(entry.line, entry.value, check);
        }
    }
    if (util::NoCaseEqual(entry.key, "DNS-SuffixSearchOrder")) {
        CheckItems(entry.line, entry.value, CheckSuffix);
    } else if (IsNumbered(entry.key, kDnsServer)) {
        CheckItems(entry.line, entry.value, CheckDnsServer);
    }
}

void AdapterCheck::CheckUnreadEntries() {
    const bool nothingIsSent = !Reading().HasDescription();
    for (const IniFile::Entry* const entry : nothingIsSent ? OwnEntries() : UnreadEntries()) {
        CheckUnreadEntry(*entry);
    }
}

}  // namespace host::check
