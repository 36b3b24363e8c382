// The module runs out of memory at every place where it asks for some: once alone, once from there
// on. An exception that is none of the module's own passes on to the host.
#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "tests/requests/sweep/Judge.h"
#include "tests/requests/sweep/Subject.h"
#include "tests/requests/sweep/Summary.h"

namespace sweep {
namespace {

/// What brings every part of the module to work: all commands of an adapter, routes, a join, a
/// leave, a move.
std::vector<Subject> ListMemorySubjects() {
    std::vector<Subject> chosen;
    for (Subject& subject : ListSubjects()) {
        for (const char* const name : {"two-adapter-server", "domain-join", "domain-join, pass 2",
                                       "leave-the-domain", "ou-move", "routes-are-made-equal"}) {
            if (subject.name == name) {
                chosen.push_back(std::move(subject));
                break;
            }
        }
    }
    return chosen;
}

class MemorySweep : public SweepTest {
protected:
    void Run() {
        Ending clean;
        std::uint64_t requests = 0;
        {
            Trial trial(subject_);
            clean = {trial.Run(), trial.Machine().GetState(), trial.File().WhereIsIt()};
            requests = trial.MemoryRequests();
            ASSERT_EQ(trial.MemoryLeaks(), std::vector<std::string>());
        }
        Figures& figures =
            FiguresOf(stays_ ? "memory exhausted from one request on" : "memory refused once");
        figures["points"] += requests;
        for (const std::uint64_t point :
             stays_ ? Sample(requests, 4, 15) : Sample(requests, 12, 40)) {
            const std::string name = "request for memory " + std::to_string(point);
            NotePoint(subject_.name + ", " + name);
            ++figures["points tried"];
            Try(point, clean, name, figures);
            if (HasFailure()) {
                return;  // the first says enough
            }
        }
    }

private:
    void Try(std::uint64_t point, const Ending& clean, const std::string& name, Figures& figures) {
        Trial trial(subject_);
        requests::RunResult next;
        Ending ending;
        ending.run = trial.Run(point, stays_, &next);
        ending.file = trial.FileBehindFirst();
        ++figures["answered " + Examine(ending, clean, name)];
        // With memory again the same module works.
        const bool works = next.result == 1 && next.reply.contains("Result") &&
                           next.reply.at("Result") != "Failure";
        EXPECT_TRUE(works) << name << ": the next request came to " << next.escaped
                           << testing::PrintToString(next.reply)
                           << testing::PrintToString(next.errors);
        EXPECT_EQ(next.comBlocks, 0U) << name;
        std::vector<std::string> leaks = trial.MemoryLeaks();
        for (std::string& leak : trial.TakeLeaks()) {
            leaks.push_back(std::move(leak));
        }
        figures["leaks"] += leaks.size();
        EXPECT_EQ(leaks, std::vector<std::string>()) << name;
        EXPECT_EQ(requests::FindSecret(ending.run, subject_.machine), "") << name;
    }

    static std::string Examine(const Ending& ending, const Ending& clean, const std::string& name) {
        const requests::RunResult& run = ending.run;
        EXPECT_EQ(run.comBlocks, 0U) << name;
        EXPECT_EQ(run.unexpected, std::vector<std::string>()) << name;
        if (run.escaped == "the module failed: std::bad_alloc") {
            EXPECT_TRUE(ending.file == "kept" || ending.file == "put away")
                << name << ": the file is " << ending.file;
            return "std::bad_alloc passed on";
        }
        if (run.result == 0 && run.reply.empty() && run.log.size() == 1) {
            EXPECT_EQ(ending.file, "kept") << name;
            return "no handler";
        }
        const Verdict verdict = Judge(ending, clean);
        EXPECT_EQ(verdict.complaints, std::vector<std::string>()) << name;
        return verdict.answer;
    }
};

TEST_P(MemorySweep, EveryRequestForMemory) {
    Run();
}

INSTANTIATE_TEST_SUITE_P(Subjects, MemorySweep,
                         testing::Combine(testing::ValuesIn(ListMemorySubjects()), testing::Bool()),
                         &TestName);

}  // namespace
}  // namespace sweep
