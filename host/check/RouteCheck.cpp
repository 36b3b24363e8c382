#include "host/check/RouteCheck.h"

#include <algorithm>
#include <utility>

#include "common/config/Event.h"
#include "common/util/Strings.h"
#include "toolbox/config/ConfigurationFileEvents.h"

namespace host::check {

namespace Event = config::Event;

namespace {

constexpr std::string_view kRoute = "Route";
constexpr std::size_t kFields = 5;  // destination, mask, gateway, one that is not used, metric

}  // namespace

void RouteCheck::Check() {
    const LookUp* const count = Reading().Find("Static-Route-Count");
    if (count == nullptr || !Reading().HasDescription()) {
        CheckUnread();
        return;
    }
    const std::int32_t number = util::StringToInt(std::string(count->text));
    if (SendsRoutes() || Reading().refused || number < 0) {
        ReportCount(*count, 0,
                    ": it deletes the machine's persistent routes but the first default route");
    }
    if (SendsRoutes()) {
        CheckSent(*count);
        ReportBeyondCount(kRoute, *count);
    } else if (number < 0) {
        ReportBeyondCount(kRoute, *count);
    } else {
        CheckUnread();
    }
}

bool RouteCheck::SendsRoutes() const {
    const LookUp* const count = Reading().Find("Static-Route-Count");
    return count != nullptr && count->Sends(Event::STATIC_ROUTE);
}

Place RouteCheck::CountPlace() const {
    return OwnValueOf(*Reading().Find("Static-Route-Count"));
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
         route != Reading().lookUps.data() + Reading().lookUps.size(); ++route) {
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
        finding.message += ", and for " + std::to_string(count - 1) + " more behind it";
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
    for (const IniFile::Entry* const entry : UnreadEntries()) {
        if (IsNumbered(entry->key, kRoute)) {
            LookUp route;
            route.key = entry->key;
            route.found = true;
            route.text = entry->value;
            route.sourceLine = entry->line;
            static_cast<void>(CheckRoute(route, Found()));
        }
    }
}

RouteCheck::Fields RouteCheck::FieldsOf(const LookUp& route) const {
    const auto field = [&](std::size_t start, std::size_t end) {
        const std::string_view piece = util::TrimBlanks(route.text.substr(start, end - start));
        const auto offset = static_cast<std::size_t>(piece.data() - route.text.data());
        return Field{std::string(piece),
                     route.found ? Source().ValuePlace(route.sourceLine, offset, piece.size())
                                 : HeaderPlace()};
    };
    Fields fields;
    std::size_t start = 0;
    if (!route.text.starts_with(',')) {
        while (fields.sent.size() < kFields) {
            const std::size_t comma = route.text.find(',', start);
            if (comma == std::string_view::npos) {
                break;
            }
            fields.sent.push_back(field(start, comma));
            start = comma + 1;
        }
    }
    fields.rest = field(start, route.text.size());
    return fields;
}

std::optional<RouteWish> RouteCheck::CheckRoute(const LookUp& route, Findings& findings) const {
    const Fields fields = FieldsOf(route);
    const std::size_t errorsBefore = findings.Errors();
    if (fields.sent.empty()) {
        findings.Warning("no-route", OwnValueOf(route),
                         (route.text.starts_with(',') ? "the text begins with a comma"
                                                      : "no field has a comma behind it") +
                             std::string(": no route comes of it"));
        return std::nullopt;
    }
    CheckCompleteness(fields, findings);
    const AddressRole roles[] = {AddressRole::kRouteDestination, AddressRole::kRouteMask,
                                 AddressRole::kRouteGateway};
    for (std::size_t i = 0; i < std::min(fields.sent.size(), std::size(roles)); ++i) {
        if (const auto fault = CheckAddress(roles[i], fields.sent[i].text)) {
            findings.Add({fault->severity, fault->code, fields.sent[i].place, fault->message});
        }
    }
    if (fields.sent.size() == kFields) {
        CheckMetric(fields.sent.back(), findings);
    }
    if (findings.Errors() != errorsBefore) {
        return std::nullopt;
    }
    const RouteWish wish{*ReadAddress(fields.sent[0].text), *ReadAddress(fields.sent[1].text),
                         *ReadAddress(fields.sent[2].text),
                         route.found ? ValueOf(route) : HeaderPlace()};
    if ((wish.destination & ~wish.mask) != 0) {
        findings.Error("route-bits", fields.sent[0].place,
                       Quoted(fields.sent[0].text) + " has bits outside the mask " +
                           Quoted(fields.sent[1].text) + ": the route program refuses it");
        return std::nullopt;
    }
    if (wish.destination == 0 && wish.mask == 0) {
        findings.Error("default-route", wish.place,
                       "a default route: the module adds it on every request, and the route "
                       "program refuses it once it is there; a default gateway belongs into "
                       "\"Gateway\"");
        return std::nullopt;
    }
    return wish;
}

void RouteCheck::CheckCompleteness(const Fields& fields, Findings& findings) {
    static constexpr const char* kLacking[] = {"",
                                               "no mask, no gateway and no metric",
                                               "no gateway and no metric",
                                               "no metric",
                                               "no metric",
                                               ""};
    const Field& rest = fields.rest;
    if (fields.sent.size() == kFields) {
        if (!rest.text.empty()) {
            findings.Warning("behind-metric", rest.place,
                             "the module ignores what stands behind the metric");
        }
        return;
    }
    std::string message = "the route has " + std::string(kLacking[fields.sent.size()]) +
                          ": the route program refuses it";
    if (!rest.text.empty()) {
        message =
            "no comma stands behind " + Quoted(rest.text) + ": the module drops it, and " + message;
    }
    findings.Error("incomplete-route", rest.place, std::move(message));
}

void RouteCheck::CheckMetric(const Field& metric, Findings& findings) {
    const std::int32_t number = util::StringToInt(metric.text);
    if (number < 1 || number > 9999) {
        findings.Error("bad-metric", metric.place,
                       Quoted(metric.text) + " is read as the metric " + std::to_string(number) +
                           ": the route program takes 1 to 9999");
    } else if (!IsWholeNumber(metric.text)) {
        findings.Warning("odd-metric", metric.place,
                         Quoted(metric.text) + " is read as the metric " + std::to_string(number));
    }
}

}  // namespace host::check
