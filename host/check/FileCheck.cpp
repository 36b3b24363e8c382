#include "host/check/FileCheck.h"

#include <algorithm>
#include <deque>
#include <map>
#include <tuple>

#include "common/util/Strings.h"
#include "host/check/AdapterCheck.h"
#include "host/check/NetworkingCheck.h"
#include "host/check/RouteCheck.h"
#include "host/check/StructureCheck.h"
#include "machine/model/Address.h"
#include "toolbox/config/ConfigurationKeys.h"

namespace host::check {

namespace {

/// The settings of the whole file: each section by itself, then what they do to each other.
class SettingsCheck {
public:
    SettingsCheck(const reading::File& file, Findings& findings)
        : file_(file), findings_(findings) {}

    void Check() {
        for (const reading::Section& section : file_.Sections()) {
            CheckSection(section);
        }
        if (asksForNothing_) {
            findings_.Warning("nothing-to-do", {},
                              "no section asks for anything: the module changes nothing and "
                              "answers \"Success\"");
        }
        CheckRestart();
        CheckSuffixes();
        CheckRouteSections();
        CheckRepeatedRoutes();
        CheckRouteGateways();
    }

private:
    void CheckSection(const reading::Section& section);
    void CheckRestart();
    void CheckSuffixes();
    void CheckRouteSections();
    void CheckRepeatedRoutes();
    void CheckRouteGateways();
    std::vector<RouteWish> Routes() const;

    const reading::File& file_;
    Findings& findings_;
    std::deque<AdapterCheck> adapters_;
    std::deque<RouteCheck> routes_;
    bool asksForNothing_ = true;
    bool mayRestart_ = false;
    bool renamesAndJoins_ = false;
};

void SettingsCheck::CheckSection(const reading::Section& section) {
    switch (section.role) {
        case SectionRole::kNetworking: {
            asksForNothing_ = false;
            NetworkingCheck networking(file_, section, findings_);
            networking.Check();
            mayRestart_ = networking.MayRestart();
            renamesAndJoins_ = networking.RenamesAndJoins();
            break;
        }
        case SectionRole::kAdapter:
            asksForNothing_ = false;
            adapters_.emplace_back(file_, section, findings_).Check();
            routes_.emplace_back(file_, section, findings_).Check();
            break;
        case SectionRole::kGlobal:
        case SectionRole::kIgnored:
            break;
    }
}

void SettingsCheck::CheckRestart() {
    const Entry* const answer = file_.Find(config::key::kGlobal, config::key::kRebootAfterConfig);
    if (answer == nullptr) {
        return;
    }
    const bool suppressed = util::NoCaseEqual(answer->value, "false");
    const Place& place = answer->valuePlace;
    if (!suppressed && !util::NoCaseEqual(answer->value, "true")) {
        findings_.Warning("odd-switch", place,
                          Quoted(answer->value) +
                              " is neither true nor false: the module answers "
                              "\"Reboot\" where a restart is needed");
    }
    if (suppressed && mayRestart_) {
        findings_.Warning("suppressed-restart", place,
                          renamesAndJoins_
                              ? "where both name and domain change, the module stops after the "
                                "rename, answers \"Failure\" (Tovrune, 3) and puts the file away: "
                                "the join and what the file asks for after it are never done"
                              : "where a new name or membership needs a restart, the module does "
                                "all that the file asks for, yet answers \"Failure\" (Tovrune, 3)");
    }
}

void SettingsCheck::CheckSuffixes() {
    const LookUp* first = nullptr;
    for (const AdapterCheck& adapter : adapters_) {
        const LookUp* const suffixes = adapter.SentSuffixes();
        if (suffixes == nullptr) {
            continue;
        }
        if (first != nullptr && suffixes->Text() != first->Text()) {
            findings_.Warning("suffix-conflict", suffixes->source->valuePlace,
                              "the DNS suffixes are the machine's, not the adapter's: every "
                              "request sets those of " +
                                  LineText(first->source->Line()) + " and then these");
        }
        first = first == nullptr ? suffixes : first;
    }
}

void SettingsCheck::CheckRouteSections() {
    const RouteCheck* first = nullptr;
    for (const RouteCheck& routes : routes_) {
        if (!routes.SendsRoutes()) {
            continue;
        }
        if (first != nullptr) {
            findings_.Error("several-route-sections", routes.CountPlace(),
                            "a second section that sets routes (the first: " +
                                LineText(first->CountPlace().line) +
                                "): each makes the machine's persistent routes its own alone, so "
                                "that one deletes those of the other, or one route twice, which "
                                "fails; Static-Route-Count=-1 sets none");
        }
        first = first == nullptr ? &routes : first;
    }
}

std::vector<RouteWish> SettingsCheck::Routes() const {
    std::vector<RouteWish> all;
    for (const RouteCheck& routes : routes_) {
        all.insert(all.end(), routes.Routes().begin(), routes.Routes().end());
    }
    return all;
}

void SettingsCheck::CheckRepeatedRoutes() {
    std::map<std::tuple<std::uint32_t, std::uint32_t, std::uint32_t>, std::size_t> lines;
    for (const RouteWish& route : Routes()) {
        const auto [first, added] =
            lines.try_emplace({route.destination, route.mask, route.gateway}, route.place.line);
        if (!added) {
            findings_.Error("repeated-route", route.place,
                            "the same route as in " + LineText(first->second) +
                                ": the route program refuses to add it twice" + kWhenRefused);
        }
    }
}

/// Only where every adapter of the file says which networks it is in.
void SettingsCheck::CheckRouteGateways() {
    std::vector<Network> networks;
    for (const AdapterCheck& adapter : adapters_) {
        if (!adapter.IsStatic() || adapter.Networks().empty()) {
            return;
        }
        networks.insert(networks.end(), adapter.Networks().begin(), adapter.Networks().end());
    }
    for (const RouteWish& route : Routes()) {
        const bool reachable = std::ranges::any_of(
            networks, [&route](const Network& network) { return network.Contains(route.gateway); });
        if (!reachable) {
            findings_.Warning("gateway-outside", route.place,
                              "the route's gateway " +
                                  machine::model::FormatAddress(route.gateway) +
                                  " is in none of the networks that the file sets: the route "
                                  "program refuses it unless another adapter reaches it");
        }
    }
}

}  // namespace

CheckedFile CheckFile(const std::string& path) {
    CheckedFile checked{reading::File::Read(path), {}};
    Findings& findings = checked.findings;
    switch (checked.file.GetState()) {
        case reading::File::State::kUnreadable:
            findings.Error("unreadable", {}, "the file cannot be read: the module finds nothing");
            return checked;
        case reading::File::State::kEmpty:
            findings.Warning(
                "empty-file", {},
                "the file is empty: the module changes nothing and answers \"Success\"");
            return checked;
        case reading::File::State::kRead:
            break;
    }
    StructureCheck structure(checked.file, findings);
    if (!structure.CheckEncoding()) {
        return checked;
    }
    structure.CheckLines();
    structure.CheckHeaders();
    structure.CheckKeys();
    SettingsCheck(checked.file, findings).Check();
    findings.Sort();
    return checked;
}

}  // namespace host::check
