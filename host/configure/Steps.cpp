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

std::optional<ChangingCall> ReadCall(const std::vector<machine::TraceEntry>& calls,
                                     std::size_t position, std::size_t end) {
    const machine::TraceEntry& call = calls[position];
    ChangingCall changing;
    changing.reached = !call.failed;
    changing.result = call.result;
    if (call.function == "ExecMethod") {
        changing.name = call.Argument("method");
        changing.parameters = call.Argument("in");
        changing.onAdapter = call.Argument("path").starts_with("Win32_NetworkAdapterConf");
        changing.value = call.outcome.value_or(call.code);
        return changing;
    }
    if (call.function == "ADsOpenObject" || call.function == "MoveHere") {
        changing.name = call.function;
        changing.value = call.failed ? call.code : 0;
        return changing;
    }
    if (call.function != "CreateProcessA") {
        return std::nullopt;
    }
    changing.name = call.Argument("command line");
    changing.value = call.failed ? call.code : 0;
    for (std::size_t next = position + 1; next < end; ++next) {
        if (calls[next].function == "CreateProcessA") {
            break;
        }
        if (calls[next].function == "GetExitCodeProcess") {
            changing.value = calls[next].outcome.value_or(changing.value);
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
