// The outcome for programs: docs/configure.schema.json describes it.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "host/configure/Result.h"

namespace host::configure {

/// The same object for a plan and for a run. All texts are UTF-8.
nlohmann::ordered_json ToJson(const Result& result, const std::string& file,
                              const std::string& machine);

/// A list of texts of the system code page.
nlohmann::ordered_json ToJson(const std::vector<std::string>& texts);

}  // namespace host::configure
