#include "host/configure/Steps.h"

#include <algorithm>
#include <charconv>
#include <string_view>

#include "common/logging/Phrases.h"
#include "common/util/Strings.h"
#include "host/configure/FailureReading.h"

namespace host::configure {

namespace {

constexpr std::string_view kNicIndex = logging::kAdapterIndex;

std::uint32_t Number(std::string_view text) {
    std::uint32_t number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

/// What follows in a line with which `place` announces a command; nothing in another line.
std::optional<std::string_view> Announced(std::string_view line, std::string_view place) {
    constexpr std::string_view kAnnounces = logging::kAboutToExecute;
    if (!line.starts_with(place) || !line.substr(place.size()).starts_with(kAnnounces)) {
        return std::nullopt;
    }
    return line.substr(place.size() + kAnnounces.size());
}

/// "class config::command::SetDns (DNS Servers=...)"
Step ReadCommand(std::string_view text) {
    Step step;
    const std::size_t description = std::min(text.find(" ("), text.size());
    const std::string_view name = text.substr(0, description);
    step.command = name.substr(name.rfind(':') + 1);
    if (text.size() > description + 2) {
        step.description = text.substr(description + 2, text.size() - description - 3);
    }
    return step;
}

std::string Argument(const machine::TraceEntry& call, std::string_view name) {
    for (const auto& [argument, value] : call.arguments) {
        if (argument == name) {
            return value;
        }
    }
    return {};
}

/// A method's ReturnValue; the trace says beside it when it was made up by a fault.
std::string ReturnValue(const machine::TraceEntry& call) {
    for (const auto& [argument, value] : call.arguments) {
        if (argument.starts_with("ReturnValue")) {
            return value;
        }
    }
    return {};
}

/// The number in front of or behind the name of a result: "0x80070005 (E_ACCESSDENIED)".
std::uint32_t ResultCode(const std::string& result) {
    const std::size_t hexadecimal = result.find("0x");
    if (hexadecimal != std::string::npos) {
        return static_cast<std::uint32_t>(
            std::strtoul(result.c_str() + hexadecimal + 2, nullptr, 16));
    }
    const std::size_t digit = result.find_first_of("0123456789");
    return digit == std::string::npos ? 0 : Number(std::string_view(result).substr(digit));
}

std::optional<ChangingCall> ReadCall(const std::vector<machine::TraceEntry>& calls,
                                     std::size_t position, std::size_t end) {
    const machine::TraceEntry& call = calls[position];
    ChangingCall changing;
    changing.reached = !call.failed;
    changing.result = call.result;
    if (call.function == "ExecMethod") {
        changing.name = Argument(call, "method");
        changing.parameters = Argument(call, "in");
        changing.onAdapter = Argument(call, "path").starts_with("Win32_NetworkAdapterConf");
        const std::string value = ReturnValue(call);
        changing.value = value.empty() ? ResultCode(call.result) : Number(value);
        return changing;
    }
    if (call.function == "ADsOpenObject" || call.function == "MoveHere") {
        changing.name = call.function;
        changing.value = call.failed ? ResultCode(call.result) : 0;
        return changing;
    }
    if (call.function != "CreateProcessA") {
        return std::nullopt;
    }
    changing.name = Argument(call, "command line");
    changing.value = call.failed ? ResultCode(call.result) : 0;
    for (std::size_t next = position + 1; next < end; ++next) {
        if (calls[next].function == "CreateProcessA") {
            break;
        }
        if (calls[next].function == "GetExitCodeProcess" && !calls[next].failed) {
            changing.value = Number(Argument(calls[next], "code"));
        }
    }
    return changing;
}

void ReadCalls(const Run& run, std::size_t begin, std::size_t end, Step& step) {
    for (std::size_t position = begin; position < end; ++position) {
        if (auto call = ReadCall(run.calls, position, end)) {
            step.calls.push_back(std::move(*call));
        }
    }
}

std::vector<Step> ReadSteps(const Run& run) {
    std::vector<Step> steps;
    std::vector<std::size_t> begins;
    std::optional<std::size_t> nic;
    std::optional<std::uint32_t> index;
    for (const Mark& mark : run.log) {
        const std::string_view text = mark.line.text;
        if (mark.line.level != kProgressLevel) {
            continue;
        }
        if (text.starts_with(kNicIndex) && !steps.empty()) {
            index = Number(text.substr(kNicIndex.size()));
            steps.back().index = index;
            continue;
        }
        const auto ofNic = Announced(text, logging::kRunsAdapterCommand);
        const auto announced = ofNic ? ofNic : Announced(text, logging::kRunsCommand);
        if (!announced) {
            continue;
        }
        Step step = ReadCommand(*announced);
        step.before = mark.state;
        if (step.command == "ConfigureNic") {
            nic = nic ? *nic + 1 : 0;
            step.nic = nic;
        } else if (ofNic) {
            step.nic = nic;
            step.index = index;
        }
        begins.push_back(mark.calls);
        steps.push_back(std::move(step));
    }
    for (std::size_t i = 0; i < steps.size(); ++i) {
        const std::size_t end = i + 1 < steps.size() ? begins[i + 1] : run.calls.size();
        ReadCalls(run, begins[i], end, steps[i]);
    }
    return steps;
}

}  // namespace

Story ReadStory(const Run& run) {
    Story story;
    story.steps = ReadSteps(run);
    const std::string outcome = run.Reply("Result");
    const bool markerReported =
        outcome == "Failure" && run.Reply("Status-Module") == logging::kMarkerModule;
    story.stoppedForRestart = outcome == "Reboot" || markerReported;
    story.completed = outcome == "Success";
    story.fileKept = outcome == "Reboot";
    if (!story.stoppedForRestart && (outcome != "Success" || run.result != 1)) {
        story.failure = ReadFailure(run, story.steps);
        story.completed = story.failure->stage == Stage::kPuttingAway;
    }
    return story;
}

}  // namespace host::configure
