// Machine files: the state of a simulated machine as JSON (docs/machine-files.md describes the
// members).
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>

#include "machine/State.h"

namespace machine {

/// What is wrong with a machine file and where: "/adapters/0/index: expected a whole number, found
/// text".
class MachineFileError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Reads a machine from JSON text. A member that is missing takes its default; a member that is
/// unknown, has the wrong type or contradicts another one throws MachineFileError naming its place.
State ParseState(std::string_view json);

/// The machine as JSON text that ParseState turns into an equal state.
std::string FormatState(const State& state);

/// The same with a file. One that cannot be read throws MachineFileError naming it; a wrong member
/// is reported after the file's name.
State LoadState(const std::filesystem::path& file);

}  // namespace machine
