#pragma once

#include <string>

#include "host/Output.h"
#include "host/configure/Plan.h"

namespace host::configure {

/// Prints a setting: where it stands, what it is about, and what becomes of it.
void PrintRow(const Row& row, const std::string& file, Output& output);

/// "site.ini:14"
std::string PlaceText(const Row& row, const std::string& file);

/// "10.0.0.1 -> 10.0.0.1, 10.0.0.2"
std::string StepText(const Row& row);

/// The calls with what they gave, where that is not 0.
std::string CallsText(const Row& row);

/// "1 change, 1 already right, 2 without effect"
std::string CountsText(const Counts& counts);

}  // namespace host::configure
