#pragma once

#include <string>

#include "host/configure/Plan.h"

namespace host::configure {

/// The reason of a setting that is as the file wants it.
constexpr const char* kAlreadySet = "already set";

/// The reason of a unit that the file names otherwise than the directory does.
constexpr const char* kFoundThere = "the module finds the computer there";

/// Why the module executed the setting's command, where the values before the run do not say it.
std::string WhyExecuted(const Row& row, const Story& story, const Step& step);

/// What becomes of a setting that the file leaves alone. `after` is the machine after the run.
std::string WhyLeftAlone(const Row& row, const machine::State& after);

/// Why the module passed over the setting.
std::string WhySkipped(const Row& row, const machine::State& before);

/// What a setting does that asks for nothing by itself.
std::string WhyNoWish(const Row& row, const Run& run, const Story& story, const Row* next);

}  // namespace host::configure
