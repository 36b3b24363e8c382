#include "host/check/AdapterCheck.h"

#include <algorithm>
#include <utility>

#include "common/config/Event.h"
#include "common/util/Strings.h"
#include "toolbox/config/ConfigurationKeys.h"

namespace host::check {

namespace Event = config::Event;
namespace key = config::key;

namespace {

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
    if (!Section().HasDescription()) {
        ReportNoDescription();
        CheckUnreadEntries();
        return;
    }
    CheckMode();
    if (IsStatic()) {
        CheckAddressing();
    } else {
        for (const std::string_view unused : {key::kAddress, key::kNetmask, key::kGateway}) {
            ReportUnused(unused, "the adapter asks a DHCP server");
        }
    }
    CheckDnsServers(*Section().Find(key::kDnsServerCount));
    if (const LookUp* const suffixes = SentSuffixes()) {
        CheckList(*suffixes, "the DNS suffixes of the machine", CheckSuffix);
    }
    if (Section().cutShort) {
        CheckUnreadEntries();
    }
}

/// What the section closes without having opened it may be what holds the whole file.
void AdapterCheck::ReportNoDescription() {
    std::string message = "there is no \"Description\": the module sets nothing of this section";
    const std::optional<reading::Refusal>& refusal = File().GetRefusal();
    if (refusal && refusal->kind == config::ErrorKind::kUnexpectedEvent) {
        message += " and gives the whole file up when it is in [" + refusal->section->name + "]";
    }
    Found().Error("no-description", HeaderPlace(), std::move(message));
}

bool AdapterCheck::IsStatic() const {
    const LookUp* const mode = Section().Find(key::kDhcp);
    return mode != nullptr && mode->Sends(Event::STATIC);
}

const LookUp* AdapterCheck::SentSuffixes() const {
    const LookUp* const suffixes = Section().Find(key::kDnsSuffixSearchOrder);
    return suffixes != nullptr && suffixes->Sends(Event::DNS_SUFFIX) ? suffixes : nullptr;
}

void AdapterCheck::CheckMode() {
    const LookUp& mode = *Section().Find(key::kDhcp);
    const std::string choice = IsStatic() ? "sets static addresses" : "asks a DHCP server";
    if (!mode.found) {
        Found().Warning("reused-text", HeaderPlace(),
                        Reuse(mode) + ", " + Quoted(mode.Text()) + ", and " + choice);
    } else if (IsStatic() && !util::NoCaseEqual(mode.Text(), "false")) {
        Found().Warning("odd-switch", OwnValueOf(mode),
                        Quoted(mode.Text()) + " is neither true nor false: the module " + choice);
    }
}

void AdapterCheck::CheckAddressing() {
    const LookUp& addresses = *Section().Find(key::kAddress);
    const LookUp& masks = *Section().Find(key::kNetmask);
    CheckList(addresses, "the addresses", CheckHost);
    CheckList(masks, "the masks", CheckMask);
    CheckNetworks(addresses, masks);
    CheckGateways(*Section().Find(key::kGateway));
}

void AdapterCheck::CheckNetworks(const LookUp& addresses, const LookUp& masks) {
    const std::vector<std::string_view> hosts = util::SplitAt(addresses.Text(), ',');
    const std::vector<std::string_view> subnets = util::SplitAt(masks.Text(), ',');
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
    const std::vector<std::string_view> items = util::SplitAt(gateways.Text(), ',');
    if (items.size() > machine::model::kMostGateways) {
        Found().Error("gateway-count", OwnValueOf(gateways),
                      "more than 5 gateways: Windows refuses them");
    }
    for (const std::string_view item : items) {
        if (IsError(CheckGateway(item)) || networks_.empty()) {
            continue;
        }
        const std::uint32_t gateway = *ReadAddress(item);
        const bool reachable = std::ranges::any_of(
            networks_, [gateway](const Network& network) { return network.Contains(gateway); });
        if (!reachable) {
            Found().Error("gateway-outside", OwnPieceOf(gateways, item),
                          "the gateway " + Quoted(item) +
                              " is in none of the adapter's networks: Windows refuses it");
        }
    }
}

void AdapterCheck::CheckDnsServers(const LookUp& count) {
    ReportCount(count, 1, {});
    std::vector<std::string> missing;
    bool lastIsMissing = false;
    for (const LookUp& lookUp : Section().lookUps) {
        if (!lookUp.key.starts_with(key::kDnsServer) || lookUp.key == count.key) {
            continue;
        }
        lastIsMissing = !lookUp.found;
        if (lookUp.found) {
            ReportValue(lookUp, CheckDnsServer(lookUp.Text()));
        } else {
            missing.push_back(lookUp.key);
        }
    }
    if (!missing.empty()) {
        ReportMissingServers(count, missing, lastIsMissing);
    }
    if (!Section().cutShort) {
        ReportBeyondCount(key::kDnsServer, count);
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
        CheckItems(lookUp.Text(), check);
        return;
    }
    Finding finding{Severity::kWarning, "reused-text", HeaderPlace(),
                    Reuse(lookUp) + " and sets " + what + " to " + Quoted(lookUp.Text())};
    for (const std::string_view item : util::SplitAt(lookUp.Text(), ',')) {
        if (const std::optional<ValueFault> fault = check(item)) {
            finding.severity = std::max(finding.severity, fault->severity);
            finding.message += "; " + fault->message;
            break;
        }
    }
    Found().Add(std::move(finding));
}

void AdapterCheck::CheckItems(std::string_view text, Checker check) {
    for (const std::string_view item : util::SplitAt(text, ',')) {
        if (const std::optional<ValueFault> fault = check(item)) {
            Found().Add({fault->severity, fault->code, File().PlaceOf(item), fault->message});
        }
    }
}

/// An entry that the module does not come to, because of another fault, has faults of its own.
void AdapterCheck::CheckUnreadEntry(const Entry& entry) {
    const bool usesDhcp =
        Own(key::kDhcp) != nullptr && util::NoCaseEqual(Own(key::kDhcp)->value, "true");
    const std::pair<std::string_view, Checker> lists[] = {
        {key::kAddress, CheckHost}, {key::kNetmask, CheckMask}, {key::kGateway, CheckGateway}};
    for (const auto& [name, check] : lists) {
        if (!usesDhcp && util::NoCaseEqual(entry.key, name)) {
            CheckItems(entry.value, check);
        }
    }
    if (util::NoCaseEqual(entry.key, key::kDnsSuffixSearchOrder)) {
        CheckItems(entry.value, CheckSuffix);
    } else if (IsNumbered(entry.key, key::kDnsServer)) {
        CheckItems(entry.value, CheckDnsServer);
    }
}

void AdapterCheck::CheckUnreadEntries() {
    const bool nothingIsSent = !Section().HasDescription();
    for (const Entry* const entry : nothingIsSent ? OwnEntries() : UnreadEntries()) {
        CheckUnreadEntry(*entry);
    }
}

}  // namespace host::check
