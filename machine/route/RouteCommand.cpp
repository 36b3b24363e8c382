#include "machine/route/RouteCommand.h"

#include <algorithm>
#include <charconv>

#include "machine/Text.h"
#include "machine/model/Address.h"

namespace machine {
namespace {

constexpr int kFailureCode = 1;

RouteOutcome Fail(std::string why) {
    return {kFailureCode, std::move(why) + "\n"};
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

/// Whether the text means the address, or else is the text itself.
bool Means(const std::string& text, const std::optional<std::uint32_t>& address,
           const std::string& otherwise) {
    return address ? model::ParseAddress(text) == address : text == otherwise;
}

RouteOutcome Add(const std::vector<std::string>& arguments, std::vector<PersistedRoute>& routes,
                 bool persistent) {
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
    const bool exists = std::ranges::any_of(routes, [&](const PersistedRoute& other) {
        return Means(other.destination, destination, {}) && Means(other.mask, mask, {}) &&
               Means(other.nextHop, gateway, {});
    });
    if (exists) {
        return Fail("The route addition failed: The object already exists.");
    }
    if (persistent) {
        routes.push_back(std::move(route));
    }
    return {0, " OK!\n"};
}

RouteOutcome Delete(const std::vector<std::string>& arguments,
                    std::vector<PersistedRoute>& routes) {
    if (arguments.size() != 1) {
        return Usage();
    }
    const auto destination = model::ParseAddress(arguments[0]);
    // Every route to the destination goes, whatever its mask and gateway.
    const auto gone = std::erase_if(routes, [&](const PersistedRoute& route) {
        return Means(route.destination, destination, arguments[0]);
    });
    return gone == 0 ? Fail("The route deletion failed: Element not found.")
                     : RouteOutcome{0, " OK!\n"};
}

}  // namespace

RouteOutcome RunRoute(const std::vector<std::string>& arguments,
                      std::vector<PersistedRoute>& routes) {
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

}  // namespace machine
