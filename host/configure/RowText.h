// How a setting of a plan reads: data for the lines of a report.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "host/Output.h"
#include "host/configure/Plan.h"

namespace host::configure {

/// A line of its own below a setting: a route that goes, comes or stays, a call, a remark.
struct SubLine {
    std::string text;
    Tone tone = {};
};

struct RowText {
    char sign;
    Tone tone;
    std::string label;  ///< "DNS servers"
    std::string text;   ///< "10.0.0.1 -> 10.0.0.1, 10.0.0.2", with why
    std::vector<SubLine> below;
};

/// How many routes a report lists before it only counts them.
constexpr std::size_t kRoutesShown = 20;

/// With `details` the calls are told too, and every route.
RowText TextOf(const Row& row, bool details);

/// ":14"
std::string PlaceText(const Row& row);

/// "10.0.0.1 -> 10.0.0.1, 10.0.0.2"
std::string StepText(const Row& row);

/// "1 change, 1 already set, 2 without effect"
std::string CountsText(const Counts& counts);

}  // namespace host::configure
