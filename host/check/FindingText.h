// A finding for people and for programs.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "host/Output.h"
#include "host/check/Finding.h"

namespace host::check {

/// "site.ini:3:14: error: ..."
void PrintHeadline(const std::string& file, const Finding& finding, Output& output);

/// "  help: ...", where the finding has a remedy.
void PrintRemedy(const Finding& finding, Output& output);

/// Both with the line of the file, as it may be shown, and a caret.
void PrintFinding(const std::string& file, const Finding& finding, const std::string& line,
                  Output& output);

/// `line` as for PrintFinding.
nlohmann::ordered_json ToJson(const Finding& finding, const std::string& line);

}  // namespace host::check
