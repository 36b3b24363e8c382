#include "machine/route/RouteCommand.h"

#include <algorithm>
#include <charconv>

#include "machine/Text.h"
#include "machine/model/Address.h"
#include "machine/model/Routes.h"

namespace machine {
namespace {

RouteOutcome Refuse(const State& state, std::string why) {
    return {static_cast<int>(model::RefusedRouteExitCode(state)), std::move(why) + "\n"};
}

RouteOutcome Usage() {
    return {1,
            "usage: route [-p] ADD destination [MASK mask] gateway [METRIC metric]\n"
            "       route DELETE destination\n"};
}

std::optional<std::int32_t> ParseNumber(std::string_view text) {
    std::int32_t number = 0;
    const char* last = text.data() + text.size();
    const auto [end, error] = std::from_chars(text.data(), last, number);
    return error == std::errc() && end == last ? std::optional(number) : std::nullopt;
}

RouteOutcome Add(const std::vector<std::string>& arguments, State& state, bool persistent) {
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
            return Refuse(state, "route: bad argument " + arguments[i]);
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
        return Refuse(state, "The route addition failed: The parameter is incorrect.");
    }
    if (!mask || !model::IsMask(*mask) || model::HasBitsOutside(*destination, *mask)) {
        return Refuse(state, "The route addition failed: The specified mask parameter is invalid.");
    }
    route.destination = model::FormatAddress(*destination);
    route.mask = model::FormatAddress(*mask);
    route.nextHop = model::FormatAddress(*gateway);
    if (model::HasRoute(state, *destination, *mask, *gateway)) {
        return Refuse(state, "The route addition failed: The object already exists.");
    }
    if (persistent) {
        model::AddRoute(state, route);
    }
    return {0, " OK!\n"};
}

RouteOutcome Delete(const std::vector<std::string>& arguments, State& state) {
    if (arguments.size() != 1) {
        return Usage();
    }
    return model::DeleteRoutes(state, arguments[0])
               ? RouteOutcome{0, " OK!\n"}
               : Refuse(state, "The route deletion failed: Element not found.");
}

}  // namespace

RouteOutcome RunRoute(const std::vector<std::string>& arguments, State& state) {
    if (!state.system.elevated) {
        return {model::kNotElevatedExitCode, "The requested operation requires elevation.\n"};
    }
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
        return Add(rest, state, persistent);
    }
    return EqualNoCase(verb, "delete") ? Delete(rest, state) : Usage();
}

}  // namespace machine
