#include "tests/requests/sweep/Subject.h"

#include <windows.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <ostream>

#include "machine/Balance.h"
#include "machine/MachineFile.h"
#include "tests/requests/cases/CaseFile.h"
#include "tests/support/Sample.h"

namespace sweep {

namespace {

constexpr const char* kExamples[] = {"static-workstation", "dhcp-laptop",    "two-adapter-server",
                                     "domain-join",        "workgroup-move", "ou-move"};
// What the examples leave out: leaving a domain, a move that the directory refuses, deleted routes,
// an older file beside the program, a refused request.
constexpr const char* kCases[] = {"leave-the-domain", "move-without-the-right",
                                  "routes-are-made-equal", "file-replaces-older-one",
                                  "more-sections-than-adapters"};

Subject LoadExample(const std::string& name) {
    const auto stem = std::filesystem::path(TOOLBOX_SOURCE_DIR) / "examples" / name;
    return {name, support::ReadFile(stem.string() + ".ini"), std::nullopt,
            machine::LoadState(stem.string() + ".json")};
}

Subject LoadCase(const std::string& name) {
    const ::cases::Case loaded = ::cases::LoadCase(name);
    Subject subject{name, support::ReadFile(loaded.configuration), std::nullopt, loaded.machine};
    if (loaded.file.contains("atHome")) {
        subject.atHome = loaded.file["atHome"].get<std::string>();
    }
    return subject;
}

/// The thread's record that the first error makes and that stays until the module is unloaded: what
/// is left after a request that throws an error and touches nothing.
const std::vector<std::string>& KeptByTheRuntime() {
    static const std::vector<std::string> kKept = [] {
        const requests::AgentFolder agent;
        const requests::PresentedFile file(agent, "two-ends.ini", "[TCP/IP]\n[NicEntry]\n");
        machine::Simulation simulation{machine::State()};
        simulation.SetProgramFile(agent.Program());
        std::optional<machine::ModuleHeap> heap;
        {
            requests::AttachedModule module(simulation);
            heap.emplace(module.Image());
            module.Configure(file.Present());
        }
        return heap->Outstanding();
    }();
    return kKept;
}

/// The subject of each request in turn.
void AddPasses(const Subject& first, std::vector<Subject>& subjects) {
    Subject subject = first;
    for (int pass = 1;; ++pass) {
        subject.name = pass == 1 ? first.name : first.name + ", pass " + std::to_string(pass);
        subjects.push_back(subject);
        Trial trial(subject);
        const requests::RunResult run = trial.Run();
        trial.TakeLeaks();
        trial.Machine().Restart();
        if (run.reply.at("Result") != "Reboot" || pass == 3) {
            return;
        }
        subject.machine = trial.Machine().GetState();
    }
}

requests::PresentedFile MakeFile(const Subject& subject, const requests::AgentFolder& agent) {
    requests::PresentedFile file(agent, "swept-configuration.ini", subject.text);
    if (subject.atHome) {
        support::WriteFile(file.Home(), *subject.atHome);
    }
    return file;
}

}  // namespace

std::vector<Subject> ListSubjects() {
    std::vector<Subject> subjects;
    for (const char* const name : kExamples) {
        AddPasses(LoadExample(name), subjects);
    }
    for (const char* const name : kCases) {
        AddPasses(LoadCase(name), subjects);
    }
    return subjects;
}

std::string TestName(const testing::TestParamInfo<Sweep>& sweep) {
    const auto& [subject, stays] = sweep.param;
    std::string name = subject.name + (stays ? "_staying" : "_once");
    std::erase(name, ',');
    std::ranges::replace_if(
        name, [](char character) { return character == '-' || character == ' '; }, '_');
    return name;
}

void PrintTo(const Subject& subject, std::ostream* out) {
    *out << subject.name;
}

Trial::Trial(const Subject& subject)
    : runtime_(KeptByTheRuntime()), file_(MakeFile(subject, agent_)), simulation_(subject.machine) {
    simulation_.SetProgramFile(agent_.Program());
}

Trial::~Trial() {
    TakeLeaks();
}

requests::RunResult Trial::Run(std::uint64_t nth, bool stays, requests::RunResult* next) {
    const std::string path = file_.Present();
    requests::RunResult run;
    // Outlives the module, whose static objects give back what they hold when it goes.
    std::optional<machine::ModuleHeap> heap;
    {
        requests::AttachedModule module(simulation_);
        heap.emplace(module.Image());
        heap->FailAt(nth, stays);
        run = module.Configure(path);
        memoryRequests_ = heap->Requests();
        heap->FailAt(0, false);
        if (next != nullptr) {
            fileBehindFirst_ = file_.WhereIsIt();
            simulation_.Restart();
            *next = module.Configure(file_.Present());
        }
    }
    const std::vector<std::string> outstanding = heap->Outstanding();
    memoryLeaks_.clear();
    std::ranges::set_difference(outstanding, runtime_, std::back_inserter(memoryLeaks_));
    return run;
}

std::vector<std::string> Trial::TakeLeaks() {
    machine::Ledger& ledger = simulation_.GetLedger();
    std::vector<std::string> leaks = machine::Weigh(ledger, simulation_.GetTrace().Entries()).leaks;
    for (const machine::Ledger::Item& item : ledger.Outstanding()) {
        if (item.kind == "pipe handle") {
            CloseHandle(reinterpret_cast<HANDLE>(item.identity));
        }
    }
    ledger.Clear();
    return leaks;
}

std::vector<std::uint64_t> Sample(std::uint64_t count, std::uint64_t few, std::uint64_t many) {
    std::vector<std::uint64_t> points;
    const std::uint64_t tried = std::min(count, support::SampleOf(few, many, count));
    for (std::uint64_t i = 0; i < tried; ++i) {
        points.push_back(tried == 1 ? 1 : 1 + i * (count - 1) / (tried - 1));
    }
    return points;
}

}  // namespace sweep
