#include "machine/route/RouteCommand.h"

#include <algorithm>
#include <charconv>

#include "machine/Text.h"
#include "machine/model/Address.h"

namespace machine {
namespace {

constexpr int failureCode = 1;

RouteOutcome Fail(std::string why) {
    return {failureCode, std::move(why) + "\n", {}};
}

RouteOutcome Usage() {
    return Fail(
        "usage: route [-p] ADD destination [MASK mask] gateway [METRIC metric]\n"
        "       route DELETE destination");
}

std::optional<std::int32_t> ParseNumber(std::string_view text) {
    std::int32_t number = 0;
    const char* last = text.data() + text.size();
    const auto [end, error] = std::from_chars(text.data(), last, number);
    return error == std::errc() && end == last ? std::optional(number) : std::nullopt;
}

bool SameAddress(const std::string& left, const std::string& right) {
    const auto address = model::ParseAddress(left);
    return address ? address == model::ParseAddress(right) : left == right;
}

RouteOutcome Add(const std::vector<std::string>& arguments,
                 const std::vector<PersistedRoute>& routes, bool persistent) {
    PersistedRoute route{"", "255.255.255.255", "", 1};
    std::vector<std::string> places;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const bool isMask = EqualNoCase(arguments[i], "mask");
        if (!isMask && !EqualNoCase(arguments[i], "metric")) {
            places.push_back(arguments[i]);
            continue;
        }
        if (++i == arguments.size()) {
            return Usage();
        }
        if (isMask) {
            route.mask = arguments[i];
            continue;
        }
        const auto metric = ParseNumber(arguments[i]);
        if (!metric || *metric < model::kLeastMetric || *metric > model::kMostMetric) {
            return Fail("route: bad argument " + arguments[i]);
        }
        route.metric = *metric;
    }
    if (places.size() != 2) {
        return Usage();
    }
    const auto destination = model::ParseAddress(places[0]);
    const auto mask = model::ParseAddress(route.mask);
    const auto gateway = model::ParseAddress(places[1]);
    if (!destination || !gateway) {
        return Fail("route: bad gateway address " + (destination ? places[1] : places[0]));
    }
    if (!mask || !model::IsMask(*mask) || model::HasBitsOutside(*destination, *mask)) {
        return Fail("The route addition failed: The parameter is incorrect.");
    }
    route.destination = model::FormatAddress(*destination);
    route.mask = model::FormatAddress(*mask);
    route.nextHop = model::FormatAddress(*gateway);
    const bool exists = std::ranges::any_of(routes, [&route](const PersistedRoute& other) {
        return SameAddress(other.destination, route.destination) &&
               SameAddress(other.mask, route.mask) && SameAddress(other.nextHop, route.nextHop);
    });
    if (exists) {
        return Fail("The route addition failed: The object already exists.");
    }
    RouteOutcome outcome{0, " OK!\n", {}};
    if (persistent) {
        outcome.change = {RouteChange::Kind::Add, route};
    }
    return outcome;
}

RouteOutcome Delete(const std::vector<std::string>& arguments,
                    const std::vector<PersistedRoute>& routes) {
    if (arguments.size() != 1) {
        return Usage();
    }
    const bool exists = std::ranges::any_of(routes, [&arguments](const PersistedRoute& route) {
        return SameAddress(route.destination, arguments[0]);
    });
    if (!exists) {
        return Fail("The route deletion failed: Element not found.");
    }
    RouteOutcome outcome{0, " OK!\n", {}};
    outcome.change.kind = RouteChange::Kind::Delete;
    outcome.change.route.destination = arguments[0];
    return outcome;
}

}  // namespace

RouteOutcome RunRoute(const std::vector<std::string>& arguments,
                      const std::vector<PersistedRoute>& routes) {
    auto argument = arguments.begin();
    bool persistent = false;
    for (; argument != arguments.end() && argument->starts_with('-'); ++argument) {
        if (*argument == "-p") {
            persistent = true;
        } else if (*argument != "-4") {
            return Usage();
        }
    }
    if (argument == arguments.end()) {
        return Usage();
    }
    const std::string& verb = *argument;
    const std::vector<std::string> rest(argument + 1, arguments.end());
    if (EqualNoCase(verb, "add")) {
        return Add(rest, routes, persistent);
    }
    return EqualNoCase(verb, "delete") ? Delete(rest, routes) : Usage();
}

void ApplyChange(std::vector<PersistedRoute>& routes, const RouteChange& change) {
    if (change.kind == RouteChange::Kind::Add) {
        routes.push_back(change.route);
    } else if (change.kind == RouteChange::Kind::Delete) {
        // Every route to the destination goes, whatever its mask and gateway.
        std::erase_if(routes, [&change](const PersistedRoute& route) {
            return SameAddress(route.destination, change.route.destination);
        });
    }
}

std::string FormatRoute(const PersistedRoute& route) {
    return route.destination + " " + route.mask + " " + route.nextHop + " " +
           std::to_string(route.metric);
}

std::optional<PersistedRoute> ParseRoute(std::string_view line) {
    const auto parts = Split(line, ' ');
    const auto metric = parts.size() == 4 ? ParseNumber(parts[3]) : std::nullopt;
    if (!metric) {
        return std::nullopt;
    }
    return PersistedRoute{parts[0], parts[1], parts[2], *metric};
}

std::string FormatChange(const RouteChange& change) {
    switch (change.kind) {
        case RouteChange::Kind::Add:
            return "add " + FormatRoute(change.route);
        case RouteChange::Kind::Delete:
            return "delete " + change.route.destination;
        case RouteChange::Kind::None:
            break;
    }
    return "none";
}

RouteChange ParseChange(std::string_view line) {
    RouteChange change;
    if (line.starts_with("add ")) {
        if (const auto route = ParseRoute(line.substr(4))) {
            change = {RouteChange::Kind::Add, *route};
        }
    } else if (line.starts_with("delete ")) {
        change.kind = RouteChange::Kind::Delete;
        change.route.destination = line.substr(7);
    }
    return change;
}

}  // namespace machine
