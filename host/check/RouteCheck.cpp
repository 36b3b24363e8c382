#include "host/check/RouteCheck.h"

#include <algorithm>
#include <utility>

#include "common/config/Event.h"
#include "common/util/Strings.h"
#include "machine/model/Address.h"
#include "toolbox/config/ConfigurationKeys.h"

namespace host::check {

namespace Event = config::Event;
namespace key = config::key;

namespace {

constexpr std::size_t kFields = ConfigurationFileEvents::kRouteFields;

}  // namespace

void RouteCheck::Check() {
    const LookUp* const count = Section().Find(key::kStaticRouteCount);
    if (count == nullptr || !Section().HasDescription()) {
        CheckUnread();
        return;
    }
    const std::int32_t number = util::StringToInt(count->Text());
    if (SendsRoutes() || Section().cutShort || number < 0) {
        ReportCount(*count, 0,
                    ": it deletes the machine's persistent routes but the first default route");
    }
    if (SendsRoutes()) {
        CheckSent(*count);
        ReportBeyondCount(key::kRoute, *count);
    } else if (number < 0) {
        ReportBeyondCount(key::kRoute, *count);
    } else {
        CheckUnread();
    }
}

bool RouteCheck::SendsRoutes() const {
    const LookUp* const count = Section().Find(key::kStaticRouteCount);
    return count != nullptr && count->Sends(Event::STATIC_ROUTE);
}

Place RouteCheck::CountPlace() const {
    return OwnValueOf(*Section().Find(key::kStaticRouteCount));
}

void RouteCheck::CheckSent(const LookUp& count) {
    const LookUp* firstMissing = nullptr;
    std::size_t missing = 0;
    const auto reportMissing = [&] {
        if (missing > 0) {
            CheckMissing(*firstMissing, std::exchange(missing, 0));
        }
    };
    for (const LookUp* route = &count + 1;
         route != Section().lookUps.data() + Section().lookUps.size(); ++route) {
        if (!route->found) {
            firstMissing = missing++ == 0 ? route : firstMissing;
            continue;
        }
        reportMissing();
        if (const std::optional<RouteWish> wish = CheckRoute(*route, Found())) {
            routes_.push_back(*wish);
        }
    }
    reportMissing();
}

/// Reports routes in a row that have no line: each is made of the text before them.
void RouteCheck::CheckMissing(const LookUp& first, std::size_t count) {
    Finding finding{Severity::kWarning, "missing-route", HeaderPlace(), Reuse(first)};
    if (count > 1) {
        finding.message += ", and for " + std::to_string(count - 1) + " more after it";
    }
    Findings faults;
    const std::optional<RouteWish> wish = CheckRoute(first, faults);
    if (!faults.List().empty()) {
        const Finding& fault = faults.List().front();
        finding.severity = fault.severity;
        finding.message += "; " + fault.message;
    }
    if (wish) {
        routes_.insert(routes_.end(), std::min<std::size_t>(count, 2), *wish);
    }
    Found().Add(std::move(finding));
}

/// The section's routes where the module does not come to them because of another fault.
void RouteCheck::CheckUnread() {
    for (const Entry* const entry : UnreadEntries()) {
        if (IsNumbered(entry->key, key::kRoute)) {
            static_cast<void>(CheckRoute({std::string(entry->key), true, entry, {}}, Found()));
        }
    }
}

std::optional<RouteWish> RouteCheck::CheckRoute(const LookUp& route, Findings& findings) const {
    const Fields fields = ConfigurationFileEvents::SplitRoute(route.Text());
    const auto placeOf = [&](std::string_view piece) { return OwnPieceOf(route, piece); };
    const std::size_t errorsBefore = findings.Errors();
    if (fields.sent.empty()) {
        findings.Warning("no-route", OwnValueOf(route),
                         (route.Text().starts_with(',') ? "the text begins with a comma"
                                                        : "no field is followed by a comma") +
                             std::string(": no route comes of it"));
        return std::nullopt;
    }
    CheckCompleteness(fields, placeOf(fields.rest), findings);
    const AddressRole roles[] = {AddressRole::kRouteDestination, AddressRole::kRouteMask,
                                 AddressRole::kRouteGateway};
    for (std::size_t i = 0; i < std::min(fields.sent.size(), std::size(roles)); ++i) {
        if (const auto fault = CheckAddress(roles[i], fields.sent[i])) {
            findings.Add({fault->severity, fault->code, placeOf(fields.sent[i]), fault->message});
        }
    }
    if (fields.sent.size() == kFields) {
        CheckMetric(fields.sent.back(), placeOf(fields.sent.back()), findings);
    }
    if (findings.Errors() != errorsBefore) {
        return std::nullopt;
    }
    const RouteWish wish{*ReadAddress(fields.sent[0]), *ReadAddress(fields.sent[1]),
                         *ReadAddress(fields.sent[2]), OwnValueOf(route)};
    if (machine::model::HasBitsOutside(wish.destination, wish.mask)) {
        findings.Error("route-bits", placeOf(fields.sent[0]),
                       Quoted(fields.sent[0]) + " has bits outside the mask " +
                           Quoted(fields.sent[1]) + ": the route program refuses it" +
                           kWhenRefused);
        return std::nullopt;
    }
    if (wish.destination == 0 && wish.mask == 0) {
        findings.Error("default-route", wish.place,
                       "a default route: the module adds it on every request, and the route "
                       "program refuses it once it is there; a default gateway belongs in "
                       "\"Gateway\"");
        return std::nullopt;
    }
    return wish;
}

void RouteCheck::CheckCompleteness(const Fields& fields, const Place& place, Findings& findings) {
    static constexpr const char* kLacking[] = {"",
                                               "no mask, no gateway and no metric",
                                               "no gateway and no metric",
                                               "no metric",
                                               "no metric",
                                               ""};
    if (fields.sent.size() == kFields) {
        if (!fields.rest.empty()) {
            findings.Warning("behind-metric", place, "the module ignores what follows the metric");
        }
        return;
    }
    std::string message = "the route has " + std::string(kLacking[fields.sent.size()]) +
                          ": the route program refuses it" + kWhenRefused;
    if (!fields.rest.empty()) {
        message = "there is no comma after " + Quoted(fields.rest) + ": the module drops it, and " +
                  message;
    }
    findings.Error("incomplete-route", place, std::move(message));
}

void RouteCheck::CheckMetric(std::string_view metric, const Place& place, Findings& findings) {
    const std::int32_t number = util::StringToInt(metric);
    if (number < machine::model::kLeastMetric || number > machine::model::kMostMetric) {
        findings.Error("bad-metric", place,
                       Quoted(metric) + " is read as the metric " + std::to_string(number) +
                           ": the route program takes 1 to 9999, refuses it" + kWhenRefused);
    } else if (!IsWholeNumber(metric)) {
        findings.Warning("odd-metric", place,
                         Quoted(metric) + " is read as the metric " + std::to_string(number));
    }
}

}  // namespace host::check
