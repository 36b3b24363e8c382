#include "machine/route/RouteChild.h"

#include <string>
#include <system_error>
#include <vector>

#include "machine/RealCalls.h"
#include "machine/Text.h"
#include "machine/route/RouteCommand.h"

namespace machine {
namespace {

std::vector<std::string> ArgumentsOf(std::string_view commandLine) {
    const std::string_view program = ProgramOf(commandLine);
    commandLine.remove_prefix(
        static_cast<std::size_t>(program.data() + program.size() - commandLine.data()));
    if (commandLine.starts_with('"')) {
        commandLine.remove_prefix(1);
    }
    std::vector<std::string> arguments = Split(commandLine, ' ');
    std::erase(arguments, "");
    return arguments;
}

}  // namespace

std::string_view ProgramOf(std::string_view commandLine) {
    commandLine = Trim(commandLine);
    if (commandLine.starts_with('"')) {
        return commandLine.substr(1, commandLine.find('"', 1) - 1);
    }
    return commandLine.substr(0, commandLine.find_first_of(" \t"));
}

RouteChild::RouteChild(State& state, std::string_view commandLine,
                       std::optional<std::uint32_t> forcedExitCode, HANDLE output)
    : process_(CreateEventA(nullptr, TRUE, TRUE, nullptr)) {
    if (process_ == nullptr) {
        throw std::system_error(static_cast<int>(GetLastError()), std::system_category(),
                                "no handle for the route program");
    }
    if (forcedExitCode) {
        exitCode_ = *forcedExitCode;
        return;
    }
    const RouteOutcome outcome = RunRoute(ArgumentsOf(commandLine), state);
    exitCode_ = static_cast<std::uint32_t>(outcome.exitCode);
    if (output != nullptr) {
        DWORD written = 0;
        Real().WriteFile(output, outcome.output.data(), static_cast<DWORD>(outcome.output.size()),
                         &written, nullptr);
    }
}

bool RouteChild::Terminate(std::uint32_t exitCode) {
    if (hasEnded_) {
        return false;
    }
    hasEnded_ = true;
    exitCode_ = exitCode;
    return true;
}

}  // namespace machine
