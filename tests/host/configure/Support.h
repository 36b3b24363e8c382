#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/host/HostProcess.h"
#include "tests/support/ScratchFolder.h"

namespace configure_tests {

using Json = nlohmann::json;
using Arguments = std::vector<std::string>;
using Files = support::ScratchFolder;
using support::ReadFile;

/// The arguments with more after them.
Arguments With(Arguments arguments, const Arguments& more);

/// "configure" with these arguments.
host_tests::Outcome Configure(const Arguments& arguments);

/// The same with "--format json". Fails the test when the data is no JSON.
Json ConfigureJson(const Arguments& arguments, unsigned long exitCode);

/// The setting of that kind in a pass; null when the pass has none.
Json SettingOf(const Json& pass, const std::string& kind);

}  // namespace configure_tests
