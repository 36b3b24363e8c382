#include "host/configure/FailureReading.h"

#include <algorithm>
#include <span>
#include <string>
#include <string_view>

#include "common/err/GeneralError.h"
#include "common/logging/Phrases.h"
#include "common/util/Strings.h"
#include "host/configure/Codes.h"
#include "host/configure/FailingCall.h"

namespace host::configure {

namespace {

using config::ErrorKind;

// Winsock's codes for a name that does not resolve.
constexpr std::int32_t kHostNotFound = 11001;
constexpr std::int32_t kNoData = 11004;

std::size_t FindLine(const Run& run, std::string_view text) {
    const auto found = std::ranges::find_if(run.log, [text](const Mark& mark) {
        return mark.line.text.find(text) != std::string::npos;
    });
    return static_cast<std::size_t>(found - run.log.begin());
}

bool Logged(const Run& run, std::string_view text) {
    return FindLine(run, text) < run.log.size();
}

/// How many platform calls were made until the module caught an error.
std::size_t CallsUntilCaught(const Run& run) {
    const std::size_t caught = std::min(FindLine(run, logging::kCaughtConfigError),
                                        FindLine(run, logging::kCaughtOtherError));
    return caught < run.log.size() ? run.log[caught].calls : run.calls.size();
}

void SetCall(FailingCall call, Failure& failure) {
    failure.call = std::move(call.text);
    failure.adapter = call.adapter;
}

/// The failing platform call behind the error.
void FindCause(const Run& run, std::uint32_t code, Failure& failure) {
    SetCall(FindFailingCall(run, CallsUntilCaught(run), code), failure);
}

/// The module asks for its program's place when the commands are done, and before it may report
/// anything about the file.
bool WasPuttingAway(const Run& run) {
    const auto calls =
        std::span(run.calls).first(std::min(CallsUntilCaught(run), run.calls.size()));
    return std::ranges::find(calls, "GetModuleFileNameA", &machine::TraceEntry::function) !=
           calls.end();
}

std::string DescribeStatus(std::int32_t status) {
    return status == 0 ? "the error carries no code"
                       : DescribeCode(static_cast<std::uint32_t>(status));
}

std::string DescribeRefusal(ErrorKind kind) {
    return kind == ErrorKind::kCountOutOfRange
               ? "a count in the file is out of range"
               : "settings of the file do not fit together, or a section is not "
                 "complete; \"check\" says which";
}

/// The outcome of the step's last call, told by its code.
void DescribeCall(const ChangingCall& call, Failure& failure) {
    failure.code = call.value;
    failure.call = call.name;
    if (!call.reached) {
        failure.call += ": " + call.result;
        failure.text = DescribeCode(call.value);
    } else if (call.name.starts_with("route ")) {
        failure.text = "the program's exit code";
    } else {
        failure.text =
            call.onAdapter ? DescribeAdapterMethod(call.value) : DescribeCode(call.value);
    }
}

void ReadConfigError(std::vector<Step>& steps, ErrorKind kind, Failure& failure) {
    Step& step = steps.back();
    step.failed = true;
    failure.step = steps.size() - 1;
    const bool called = kind == ErrorKind::kMethodFailed || kind == ErrorKind::kProgramFailed;
    if (called && !step.calls.empty()) {
        DescribeCall(step.calls.back(), failure);
    } else if (called) {
        failure.text = kind == ErrorKind::kMethodFailed ? "the method did not succeed"
                                                        : "the route program did not succeed";
    } else if (step.command == "ConfigureNic") {
        failure.text = "the machine has no PCI adapter left for this section";
    } else if (kind == ErrorKind::kEmptyList) {
        failure.text = "the list of addresses or masks is empty";
    } else {
        failure.text = "the module gives no reason";
    }
}

/// An error of the system: of the last step, or of reading a current setting after it, which only
/// happens between the commands of an adapter.
void ReadSystemError(const Run& run, std::vector<Step>& steps, Failure& failure) {
    const auto status = static_cast<std::uint32_t>(failure.status.value_or(0));
    failure.text = DescribeStatus(failure.status.value_or(0));
    FindCause(run, status, failure);
    Step& step = steps.back();
    const bool worked = step.command == "ConfigureNic" || step.command == "Sleep" ||
                        (!step.calls.empty() && step.calls.back().Succeeded());
    failure.afterLastStep = step.nic.has_value() && worked;
    if (!failure.afterLastStep) {
        step.failed = true;
        failure.step = steps.size() - 1;
    }
}

/// The line's text before what is filled in.
constexpr std::string_view kUnhandledError = logging::kUnhandledError;
constexpr std::string_view kUnhandledErrorStart =
    kUnhandledError.substr(0, kUnhandledError.find('%'));

/// DoMagic's words for an error that left the handler.
std::string UnhandledError(const Run& run) {
    const std::size_t line = FindLine(run, kUnhandledErrorStart);
    if (line == run.log.size()) {
        return {};
    }
    const std::string& text = run.log[line].line.text;
    const std::size_t dash = text.find(" - ");
    return dash == std::string::npos ? text : text.substr(dash + 3);
}

}  // namespace

Failure ReadFailure(const Run& run, std::vector<Step>& steps) {
    Failure failure;
    failure.stage = !steps.empty()                          ? Stage::kRunning
                    : Logged(run, logging::kAboutToAnalyze) ? Stage::kAnalysing
                                                            : Stage::kReading;
    if (run.Reply("Result") != "Failure") {
        const std::string unhandled = UnhandledError(run);
        failure.stage = run.Reply("Result").empty() ? failure.stage : Stage::kPuttingAway;
        failure.text = !run.moduleError.empty() ? run.moduleError
                       : !unhandled.empty()     ? unhandled
                                                : "the module did not handle the message";
        FindCause(run, 0, failure);
        if (failure.call.empty() && !run.moduleError.empty()) {
            SetCall(FindLastRead(run), failure);
        }
        return failure;
    }
    const std::int32_t status = util::StringToInt(run.Reply("Status-Code"));
    const auto kind = static_cast<ErrorKind>(status);  // where it is a configuration error
    failure.status = status;
    failure.code = status;
    const bool ofConfiguration = Logged(run, logging::kCaughtConfigError);
    if (!ofConfiguration && WasPuttingAway(run)) {
        failure.stage = Stage::kPuttingAway;
        failure.text = DescribeStatus(status);
        FindCause(run, static_cast<std::uint32_t>(status), failure);
        return failure;
    }
    if (failure.stage == Stage::kRunning) {
        if (ofConfiguration) {
            ReadConfigError(steps, kind, failure);
        } else {
            ReadSystemError(run, steps, failure);
        }
        return failure;
    }
    failure.text = ofConfiguration ? DescribeRefusal(kind) : DescribeStatus(status);
    if (!ofConfiguration) {
        FindCause(run, static_cast<std::uint32_t>(status), failure);
    }
    failure.configurationRefused =
        failure.stage == Stage::kReading &&
        (ofConfiguration || (status >= kHostNotFound && status <= kNoData));
    return failure;
}

}  // namespace host::configure
