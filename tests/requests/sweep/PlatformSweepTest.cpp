// Every platform call of a request fails, one after the other: once alone, once with all after it.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <string>
#include <system_error>
#include <tuple>
#include <utility>
#include <vector>

#include "machine/Balance.h"
#include "tests/requests/cases/CaseFile.h"
#include "tests/requests/sweep/Judge.h"
#include "tests/requests/sweep/Subject.h"
#include "tests/requests/sweep/Summary.h"

namespace sweep {
namespace {

constexpr std::uint64_t kRecoverEach = 5;  // points

struct Outcome {
    Ending ending;
    std::uint64_t calls;  // that can fail
    std::uint64_t fired;
    std::map<std::string, std::size_t> kept;
    std::vector<std::string> leaks;
    machine::State afterRecovery;
};

/// Where a file goes whose new folder is unknown: the root of the drive.
bool TakeFromRoot(const Trial& trial) {
    const auto root = std::filesystem::current_path().root_path();
    std::error_code ignored;
    return std::filesystem::remove(root / trial.File().Home().filename(), ignored);
}

/// The machine restarts and the file is presented until it asks for no other restart.
machine::State Recover(Trial& trial) {
    machine::Simulation& machine = trial.Machine();
    machine.SetFaultPlan({});
    for (int pass = 0; pass < 4; ++pass) {
        machine.Restart();
        const requests::RunResult run = trial.Run();
        if (!run.reply.contains("Result") || run.reply.at("Result") != "Reboot") {
            break;
        }
    }
    machine.Restart();
    return machine.GetState();
}

Outcome Try(const Subject& subject, machine::FaultPlan plan, bool recover) {
    Trial trial(subject);
    machine::Simulation& machine = trial.Machine();
    Outcome outcome;
    machine.SetFaultPlan(std::move(plan));
    outcome.ending.run = trial.Run();
    outcome.leaks = trial.MemoryLeaks();
    outcome.calls = machine.GetFaultPlan().CallsSeen();
    outcome.fired = machine.GetFaultPlan().Fired();
    outcome.ending.machine = machine.GetState();
    outcome.ending.file = trial.File().WhereIsIt();
    if (outcome.ending.file == "gone" && TakeFromRoot(trial)) {
        outcome.ending.file = "put away";
    }
    outcome.kept = machine::Weigh(machine.GetLedger(), machine.GetTrace().Entries()).kept;
    const std::vector<std::string> leaks = trial.TakeLeaks();
    outcome.leaks.insert(outcome.leaks.end(), leaks.begin(), leaks.end());
    if (recover) {
        outcome.afterRecovery = Recover(trial);
    }
    return outcome;
}

class PlatformSweep : public SweepTest {
protected:
    void Run() {
        const Outcome clean = Try(subject_, {}, true);
        ASSERT_EQ(clean.leaks, std::vector<std::string>());
        Figures& figures = FiguresOf(stays_ ? "platform calls failing from one on"
                                            : "platform calls failing, one at a time");
        figures["points"] += clean.calls;
        std::uint64_t tried = 0;
        for (const std::uint64_t point :
             // With one failure nearly every call matters, with a staying one the first few do.
             stays_ ? Sample(clean.calls, 4, 15) : Sample(clean.calls, 15, 60)) {
            const std::string name = "call:" + std::to_string(point) + (stays_ ? "+" : "");
            NotePoint(subject_.name + ", " + name);
            const bool recover = ++tried % kRecoverEach == 0;
            const Outcome outcome =
                Try(subject_, machine::FaultPlan::FailCall(point, stays_), recover);
            if (outcome.fired == 0 && point > outcome.calls) {
                continue;  // how often a child is waited for is a matter of time
            }
            const Verdict verdict = Judge(outcome.ending, clean.ending);
            ++figures["points tried"];
            ++figures["answered " + verdict.answer];
            const bool endedWell = verdict.answer == "Success" || verdict.answer == "Reboot";
            figures["without harm"] += verdict.harmless ? 1 : 0;
            figures["passed over, another end"] += endedWell && !verdict.harmless ? 1 : 0;
            figures["recovery compared"] += recover && !verdict.passedOver ? 1 : 0;
            figures["leaks"] += outcome.leaks.size();
            for (const auto& [kind, count] : outcome.kept) {
                figures["kept open on purpose: " + kind] += count;
            }
            Report(name, outcome, verdict);
            if (recover && !verdict.passedOver && outcome.afterRecovery != clean.afterRecovery) {
                ADD_FAILURE() << name << ": the machine ends up different after it: "
                              << cases::ListChanges(clean.afterRecovery, outcome.afterRecovery);
            }
            if (testing::Test::HasFailure()) {
                return;  // the first says enough
            }
        }
    }

private:
    void Report(const std::string& name, const Outcome& outcome, const Verdict& verdict) const {
        EXPECT_GT(outcome.fired, 0U) << name;
        for (const std::string& complaint : verdict.complaints) {
            ADD_FAILURE() << name << ": " << complaint;
        }
        for (const std::string& leak : outcome.leaks) {
            ADD_FAILURE() << name << ": " << leak;
        }
        const std::string secret = requests::FindSecret(outcome.ending.run, subject_.machine);
        EXPECT_EQ(secret, "") << name;
        if (testing::Test::HasFailure()) {
            const requests::RunResult& run = outcome.ending.run;
            for (const machine::TraceEntry& call : run.calls) {
                if (call.injected) {
                    std::printf("failed on purpose: call %llu, %s\n",
                                static_cast<unsigned long long>(call.number),
                                call.function.c_str());
                    break;
                }
            }
            std::printf("errors: %s\nlog:\n%s\n", testing::PrintToString(run.errors).c_str(),
                        testing::PrintToString(run.log).c_str());
        }
    }
};

TEST_P(PlatformSweep, EveryFailingCall) {
    Run();
}

INSTANTIATE_TEST_SUITE_P(Subjects, PlatformSweep,
                         testing::Combine(testing::ValuesIn(ListSubjects()), testing::Bool()),
                         &TestName);

}  // namespace
}  // namespace sweep
