// Presented again and again, with a restart between, a configuration comes to an end: requests that
// change nothing any more. Where it does not, the reason is one that is known.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "machine/MachineFile.h"
#include "tests/cases/harness/Actions.h"
#include "tests/sweep/RandomPair.h"
#include "tests/sweep/Subject.h"
#include "tests/sweep/Summary.h"

namespace sweep {
namespace {

constexpr std::uint64_t firstSeed = 20'000;
#ifdef TOOLBOX_CHECKED
constexpr std::uint64_t pairs = 50;  // the guard allocator takes its time
#else
constexpr std::uint64_t pairs = 200;
#endif
constexpr int mostRequests = 8;

/// Whether the request did something that took effect. A pause does nothing, and what the machine
/// refuses may be tried for ever. 1 means a restart for a method and a refusal for route.
bool HadEffect(const e2e::RunResult& run) {
    const std::vector<std::string> actions = e2e::ListActions(run.calls);
    return std::ranges::any_of(actions, [](const std::string& action) {
        return action.ends_with("-> 0") ||
               (action.ends_with("-> 1") && !action.starts_with("route ")) ||
               (action.starts_with("move ") && action.ends_with("-> S_OK"));
    });
}

class Settling {
public:
    explicit Settling(std::uint64_t seed) : random_(seed), subject_(MakeSubject(random_)) {}

    /// The reason why it does not settle; empty when it does.
    std::string Run() {
        Trial trial(subject_);
        const std::string why = WhyItMayNotSettle(trial.File().Present());
        int quiet = 0;
        for (int request = 0; request < mostRequests && quiet < 2; ++request) {
            const machine::State before = trial.Machine().GetState();
            const e2e::RunResult run = trial.Run();
            Check(run, trial);
            const bool changed = HadEffect(run) || trial.Machine().GetState() != before;
            // Behind a quiet request every further one must be quiet.
            if (changed && quiet > 0) {
                ADD_FAILURE() << "a request changes something behind one that did not";
            }
            quiet = changed ? 0 : quiet + 1;
            trial.Machine().Restart();
        }
        if (quiet == 2) {
            return {};
        }
        EXPECT_NE(why, "") << "no reason is known why this should not come to an end";
        return why.empty() ? "none known" : why;
    }

    void Print(std::uint64_t seed) const {
        std::printf("seed %llu\n%s\n%s\n", static_cast<unsigned long long>(seed),
                    subject_.text.c_str(), machine::FormatState(subject_.machine).c_str());
    }

private:
    static Subject MakeSubject(Random& random) {
        Subject subject;
        subject.name = "random";
        subject.text = RandomConfiguration(random);
        subject.machine = RandomMachine(random);
        return subject;
    }

    void Check(const e2e::RunResult& run, Trial& trial) const {
        EXPECT_EQ(run.escaped, "");
        EXPECT_EQ(run.result, 1);
        EXPECT_EQ(run.unexpected, std::vector<std::string>());
        EXPECT_EQ(run.comBlocks, 0U);
        EXPECT_EQ(trial.MemoryLeaks(), std::vector<std::string>());
        EXPECT_EQ(trial.TakeLeaks(), std::vector<std::string>());
        EXPECT_EQ(e2e::FindSecret(run, subject_.machine), "");
        const bool isReboot = run.reply == std::map<std::string, std::string>{{"Result", "Reboot"}};
        EXPECT_EQ(trial.File().WhereIsIt(), isReboot ? "kept" : "put away");
    }

    Random random_;
    Subject subject_;
};

TEST(Settling, RandomConfigurationsOnRandomMachines) {
    std::map<std::string, int> unsettled;
    for (std::uint64_t seed = firstSeed; seed < firstSeed + pairs; ++seed) {
        NotePoint("seed " + std::to_string(seed));
        Settling settling(seed);
        const std::string why = settling.Run();
        if (!why.empty()) {
            ++unsettled[why];
        }
        if (HasFailure()) {
            settling.Print(seed);
            return;
        }
    }
    std::uint64_t sum = 0;
    for (const auto& [why, count] : unsettled) {
        std::printf("%d never settle: %s\n", count, why.c_str());
        sum += static_cast<std::uint64_t>(count);
    }
    std::printf("%llu of %llu random configurations settle\n",
                static_cast<unsigned long long>(pairs - sum),
                static_cast<unsigned long long>(pairs));
    EXPECT_LT(sum, pairs / 2) << "too few can settle to show anything";
}

}  // namespace
}  // namespace sweep
