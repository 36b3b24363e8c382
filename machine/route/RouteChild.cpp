#include "machine/route/RouteChild.h"

#include <system_error>
#include <utility>
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

HANDLE DuplicateOf(HANDLE handle) {
    const HANDLE self = GetCurrentProcess();
    HANDLE duplicate = nullptr;
    Real().DuplicateHandle(self, handle, self, &duplicate, 0, FALSE, DUPLICATE_SAME_ACCESS);
    return duplicate;
}

}  // namespace

std::string_view ProgramOf(std::string_view commandLine) {
    commandLine = Trim(commandLine);
    if (commandLine.starts_with('"')) {
        return commandLine.substr(1, commandLine.find('"', 1) - 1);
    }
    return commandLine.substr(0, commandLine.find_first_of(" \t"));
}

RouteChild::RouteChild(std::string commandLine, std::optional<std::uint32_t> forcedExitCode,
                       HANDLE output)
    : commandLine_(std::move(commandLine)),
      forcedExitCode_(forcedExitCode),
      process_(CreateEventA(nullptr, TRUE, FALSE, nullptr)),
      output_(output == nullptr ? nullptr : DuplicateOf(output)) {
    if (process_ == nullptr) {
        throw std::system_error(static_cast<int>(GetLastError()), std::system_category(),
                                "no handle for the route program");
    }
}

RouteChild::~RouteChild() {
    if (output_ != nullptr) {
        Real().CloseHandle(output_);
    }
}

RouteChild::RouteChild(RouteChild&& other) noexcept
    : commandLine_(std::move(other.commandLine_)),
      forcedExitCode_(other.forcedExitCode_),
      process_(std::exchange(other.process_, nullptr)),
      output_(std::exchange(other.output_, nullptr)),
      exitCode_(other.exitCode_) {}

RouteChild& RouteChild::operator=(RouteChild&& other) noexcept {
    std::swap(commandLine_, other.commandLine_);
    std::swap(forcedExitCode_, other.forcedExitCode_);
    std::swap(process_, other.process_);
    std::swap(output_, other.output_);
    std::swap(exitCode_, other.exitCode_);
    return *this;
}

void RouteChild::Run(State& state) {
    if (HasEnded()) {
        return;
    }
    if (forcedExitCode_) {
        End(*forcedExitCode_);
        return;
    }
    const RouteOutcome outcome = RunRoute(ArgumentsOf(commandLine_), state.routes);
    if (output_ != nullptr) {
        DWORD written = 0;
        Real().WriteFile(output_, outcome.output.data(), static_cast<DWORD>(outcome.output.size()),
                         &written, nullptr);
    }
    End(static_cast<std::uint32_t>(outcome.exitCode));
}

bool RouteChild::Terminate(std::uint32_t exitCode) {
    if (HasEnded()) {
        return false;
    }
    End(exitCode);
    return true;
}

void RouteChild::End(std::uint32_t exitCode) {
    exitCode_ = exitCode;
    SetEvent(process_);
    if (output_ != nullptr) {
        Real().CloseHandle(std::exchange(output_, nullptr));
    }
}

}  // namespace machine
