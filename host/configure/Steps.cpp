#include "host/configure/Steps.h"

#include "common/logging/Phrases.h"
#include "common/util/Strings.h"
#include "host/configure/Announcement.h"
#include "host/configure/FailureReading.h"

namespace host::configure {

namespace {

std::optional<ChangingCall> ReadCall(const std::vector<machine::TraceEntry>& calls,
                                     std::size_t position, std::size_t end) {
    const machine::TraceEntry& call = calls[position];
    ChangingCall changing;
    changing.reached = !call.failed;
    changing.result = call.result;
    if (call.function == "ExecMethod") {
        changing.name = call.Argument("method");
        changing.parameters = call.Argument("in");
        changing.onAdapter = !call.Argument("path").starts_with("Win32_ComputerSystem");
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
        if (const auto chosen = ReadAdapterIndex(mark.line); chosen && !steps.empty()) {
            index = chosen;
            steps.back().index = index;
            continue;
        }
        std::optional<Announcement> announcement = ReadAnnouncement(mark.line);
        if (!announcement) {
            continue;
        }
        Step step;
        step.command = std::move(announcement->command);
        step.description = std::move(announcement->description);
        step.before = mark.present;
        if (step.command == "ConfigureNic") {
            nic = nic ? *nic + 1 : 0;
            step.nic = nic;
        } else if (announcement->ofAdapter) {
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

std::string FailureText(const Failure& failure) {
    if (failure.code == 0) {
        return failure.text;
    }
    const auto code = static_cast<std::uint32_t>(failure.code);
    constexpr std::uint32_t kFirstHresult = 0x80000000;
    return failure.text +
           (code < kFirstHresult ? util::Format(" (%u)", code) : util::Format(" (0x%08X)", code));
}

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
