#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "machine/State.h"
#include "tests/host/HostProcess.h"

namespace configure_tests {

using Json = nlohmann::json;
using Arguments = std::vector<std::string>;

/// Files of a test in the folder it runs in; deleted with the object.
class Files {
public:
    ~Files();
    Files() = default;
    Files(const Files&) = delete;
    Files& operator=(const Files&) = delete;

    /// Writes the bytes and returns the name.
    std::string Write(const std::string& name, const std::string& bytes);
    std::string Write(const std::string& name, const machine::State& state);
    /// A file that the program under test may write; deleted too.
    std::string Name(const std::string& name);

private:
    std::vector<std::string> names_;
};

std::string ReadFile(const std::string& name);
bool FileExists(const std::string& name);

/// "configure" with these arguments.
host_tests::Outcome Configure(Arguments arguments);

/// The same with "--format json". Fails the test when the data is no JSON.
Json ConfigureJson(Arguments arguments, unsigned long exitCode);

/// The setting of that kind in a pass; null when the pass has none.
Json SettingOf(const Json& pass, const std::string& kind);

}  // namespace configure_tests
