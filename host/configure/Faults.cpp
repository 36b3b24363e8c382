#include "host/configure/Faults.h"

#include <algorithm>
#include <set>
#include <string_view>

#include "host/HostError.h"
#include "host/Text.h"

namespace host::configure {

namespace {

using machine::TraceEntry;

/// Calls that bring what came before to its end, well or not: they ask how it went, or give back
/// what was handed out.
bool Concludes(const TraceEntry& call) {
    constexpr std::string_view kConcluding[] = {"CloseHandle", "GetExitCodeProcess", "LsaClose",
                                                "RegCloseKey", "WaitForSingleObject"};
    return call.faultPoint == 0 ||
           std::ranges::find(kConcluding, call.function) != std::end(kConcluding) ||
           machine::ArgumentCondition{"name", "ReturnValue", true}.Holds(call.arguments);
}

/// The module asks for its program's place when the commands are done, well or not.
std::size_t BeginOfPuttingAway(const std::vector<TraceEntry>& calls) {
    const auto begin = std::ranges::find(calls, "GetModuleFileNameA", &TraceEntry::function);
    return static_cast<std::size_t>(begin - calls.begin());
}

/// The calls that may have ended the pass: after them the module began nothing more.
std::set<std::uint64_t> EndingCalls(const Pass& pass) {
    std::set<std::uint64_t> ending;
    if (!pass.story.failure) {
        return ending;
    }
    const std::vector<TraceEntry>& calls = pass.run.calls;
    for (std::size_t end : {BeginOfPuttingAway(calls), calls.size()}) {
        bool isLast = true;
        while (isLast && end > 0) {
            const TraceEntry& call = calls[--end];
            ending.insert(call.faultPoint);
            isLast = Concludes(call);
        }
    }
    return ending;
}

}  // namespace

machine::FaultPlan ParseFaults(const std::vector<std::string>& texts) {
    std::vector<machine::FaultRule> rules;
    for (const std::string& text : texts) {
        try {
            const auto more = machine::ParseFaultRules(text);
            rules.insert(rules.end(), more.begin(), more.end());
        } catch (const machine::FaultPlanError& error) {
            throw HostError(std::string("--fail: ") + error.what(), kWrongUsage);
        }
    }
    return machine::FaultPlan(rules);
}

void NoteIdleFaults(const Outcome& outcome, Output& output) {
    std::set<std::uint64_t> ending;
    for (const Pass& pass : outcome.passes) {
        ending.merge(EndingCalls(pass));
    }
    for (const std::optional<Pass>* const pass : {&outcome.afterRestart, &outcome.furtherRun}) {
        if (*pass) {
            ending.merge(EndingCalls(**pass));
        }
    }
    const auto note = [&output](const std::string& rule, const char* what, const char* member) {
        output.Note("toolbox-host: --fail " + rule + " " + what);
        output.Document()[member].push_back(ToUtf8(rule));
    };
    for (const machine::FaultPlan::Entry& entry : outcome.faults.Entries()) {
        if (entry.failed.empty()) {
            note(entry.rule.text, "made no call fail", "unusedFaults");
        } else if (std::ranges::none_of(entry.failed, [&ending](std::uint64_t call) {
                       return ending.contains(call);
                   })) {
            note(entry.rule.text, "made a call fail that the module passed over",
                 "passedOverFaults");
        }
    }
}

}  // namespace host::configure
