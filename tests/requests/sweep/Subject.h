// What is swept: a configuration file, a machine that it is presented to, and what comes of it when
// nothing fails.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "machine/ModuleHeap.h"
#include "machine/Simulation.h"
#include "machine/State.h"
#include "tests/requests/harness/ModuleRun.h"
#include "tests/requests/harness/PresentedFile.h"

namespace sweep {

struct Subject {
    std::string name;  // "domain-join, pass 2"
    std::string text;
    std::optional<std::string> atHome;  // an older file where it is put away
    machine::State machine;
};

/// The examples and some cases, a subject for each request that it takes until one does nothing:
/// after each request that changes something the machine restarts.
std::vector<Subject> ListSubjects();

/// A subject, and whether what fails goes on failing.
using Sweep = std::tuple<Subject, bool>;

class SweepTest : public testing::TestWithParam<Sweep> {
protected:
    const Subject& subject_ = std::get<Subject>(GetParam());
    const bool stays_ = std::get<bool>(GetParam());
};

/// A sweep's name as GoogleTest takes names, and a subject's as it prints it.
std::string TestName(const testing::TestParamInfo<Sweep>& sweep);
void PrintTo(const Subject& subject, std::ostream* out);

/// A machine and a file, ready for one request to a freshly loaded module.
class Trial {
public:
    explicit Trial(const Subject& subject);
    ~Trial();
    Trial(const Trial&) = delete;
    Trial& operator=(const Trial&) = delete;

    machine::Simulation& Machine() { return simulation_; }
    const requests::PresentedFile& File() const { return file_; }

    /// Presents the file to a freshly loaded module and unloads it. With `nth` its nth request for
    /// memory fails, or the nth and all after it. With `next` the machine restarts then and the
    /// same module gets the file once more, with memory enough. FileBehindFirst says where the file
    /// was between the two.
    requests::RunResult Run(std::uint64_t nth = 0, bool stays = false,
                            requests::RunResult* next = nullptr);
    const std::string& FileBehindFirst() const { return fileBehindFirst_; }
    /// How many requests for memory the last run's first message made.
    std::uint64_t MemoryRequests() const { return memoryRequests_; }

    /// What the last run's module did not give back of its memory, without what the C++ runtime in
    /// it keeps by its nature.
    const std::vector<std::string>& MemoryLeaks() const { return memoryLeaks_; }

    /// Forgets what was kept open on purpose, so that it neither fills the process nor counts
    /// again; gives what was left open otherwise.
    std::vector<std::string> TakeLeaks();

private:
    const std::vector<std::string>& runtime_;  // found before the machine is: one at a time
    requests::AgentFolder agent_;
    requests::PresentedFile file_;
    machine::Simulation simulation_;
    std::vector<std::string> memoryLeaks_;
    std::uint64_t memoryRequests_ = 0;
    std::string fileBehindFirst_;
};

/// The points 1 to count; or `few` of them, or `many`, evenly spread, the first and last among
/// them, as support::SampleOf says.
std::vector<std::uint64_t> Sample(std::uint64_t count, std::uint64_t few, std::uint64_t many);

}  // namespace sweep
