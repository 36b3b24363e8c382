#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "host/check/SectionCheck.h"
#include "toolbox/config/ConfigurationFileEvents.h"

namespace host::check {

/// What comes of a route that the route program refuses.
inline constexpr const char* kWhenRefused =
    ", and mostly exits with 0 (\"Success\", without the route), on some versions of Windows with "
    "1 "
    "(Failure 5)";

/// A route that the module is asked to set, as the module reads it; host byte order.
struct RouteWish {
    std::uint32_t destination;
    std::uint32_t mask;
    std::uint32_t gateway;
    Place place;  ///< of the line, or of the header where the line is missing
};

/// Checks the static routes of one adapter section.
class RouteCheck : private SectionCheck {
public:
    using SectionCheck::SectionCheck;

    void Check();

    /// Whether the section sends routes, an empty set of them included: that one deletes routes.
    bool SendsRoutes() const;
    /// Where the section asks for routes.
    Place CountPlace() const;
    /// The routes without faults, in the module's order.
    const std::vector<RouteWish>& Routes() const noexcept { return routes_; }

private:
    using Fields = ConfigurationFileEvents::RouteFields;

    void CheckSent(const LookUp& count);
    void CheckUnread();
    void CheckMissing(const LookUp& first, std::size_t count);
    std::optional<RouteWish> CheckRoute(const LookUp& route, Findings& findings) const;
    static void CheckCompleteness(const Fields& fields, const Place& place, Findings& findings);
    static void CheckMetric(std::string_view metric, const Place& place, Findings& findings);

    std::vector<RouteWish> routes_;
};

}  // namespace host::check
