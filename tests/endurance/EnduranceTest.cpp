// Many requests in one process, and many lives of the module in one: nothing grows but what is kept
// open on purpose.
#include <gtest/gtest.h>
#include <windows.h>

#include <tlhelp32.h>

#include <cstddef>
#include <string>
#include <vector>

#include "machine/ComMemoryBalance.h"
#include "tests/cases/CaseFile.h"
#include "tests/cases/harness/KeptLeaks.h"
#include "tests/cases/harness/ModuleHeap.h"
#include "tests/cases/harness/ModuleRun.h"
#include "tests/cases/harness/PresentedFile.h"
#include "tests/endurance/ProcessState.h"

namespace {

/// Two configurations that each undo the other, so that every request has work to do.
constexpr const char* toStatic =
    "[TCP/IP]\nDescription=A\nDHCP=false\nAddress=10.0.1.60\nNetmask=255.255.255.0\n"
    "Gateway=10.0.1.1\nDNS-Server-Count=1\nDNS-Server0=10.0.1.3\n"
    "DNS-SuffixSearchOrder=lab.example\nStatic-Route-Count=-1\n"
    "[Networking]\nDomainUsername=eravbw\nDomainPassword=6-rZ-avbW\nDSOrganizationalUnit=West\n";
constexpr const char* toDhcp =
    "[TCP/IP]\nDescription=A\nDHCP=true\nDNS-Server-Count=1\nDNS-Server0=10.0.1.4\n"
    "DNS-SuffixSearchOrder=corp.example\nStatic-Route-Count=-1\n"
    "[Networking]\nDomainUsername=eravbw\nDomainPassword=6-rZ-avbW\n"
    "DSOrganizationalUnit=East/Sales\n";
/// Each adds the route that the other deletes: one child to add and one to delete.
constexpr const char* firstRoute =
    "[TCP/IP]\nDescription=A\nDHCP=true\nDNS-Server-Count=1\nDNS-Server0=10.0.1.4\n"
    "DNS-SuffixSearchOrder=corp.example\nStatic-Route-Count=1\n"
    "Route0=10.40.0.0,255.255.0.0,10.0.1.1,,1,\n";
constexpr const char* secondRoute =
    "[TCP/IP]\nDescription=A\nDHCP=true\nDNS-Server-Count=1\nDNS-Server0=10.0.1.4\n"
    "DNS-SuffixSearchOrder=corp.example\nStatic-Route-Count=1\n"
    "Route0=10.50.0.0,255.255.0.0,10.0.1.1,,1,\n";
constexpr const char* refused = "[TCP/IP]\n[NicEntry]\n";

std::size_t CountThreads() {
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 entry{};
    entry.dwSize = sizeof entry;
    std::size_t count = 0;
    for (BOOL more = Thread32First(snapshot, &entry); more; more = Thread32Next(snapshot, &entry)) {
        count += entry.th32OwnerProcessID == GetCurrentProcessId() ? 1 : 0;
    }
    CloseHandle(snapshot);
    return count;
}

class Endurance : public testing::Test {
protected:
    Endurance() : agent_("enduring-agent"), simulation_(cases::LoadBaseMachine("member")) {
        simulation_.SetProgramFile(agent_.Program());
    }

    std::string Present(const char* text) const {
        return e2e::PresentedFile(agent_, "enduring.ini", text).Present();
    }

    /// Checks a request and forgets its record.
    void Check(const e2e::RunResult& run, const char* result) {
        ASSERT_EQ(run.reply.at("Result"), result) << testing::PrintToString(run.errors);
        ASSERT_EQ(run.comBlocks, 0U);
        ASSERT_EQ(run.unexpected, std::vector<std::string>());
        const e2e::Balance balance =
            e2e::Weigh(simulation_.GetLedger(), simulation_.GetTrace().Entries());
        ASSERT_EQ(balance.leaks, std::vector<std::string>());
        for (const auto& [kind, count] : balance.kept) {
            kept_ += count;
        }
        simulation_.GetLedger().Clear();
        simulation_.ForgetCalls();
    }

    e2e::AgentFolder agent_;
    machine::Simulation simulation_;
    std::size_t kept_ = 0;  // handles left open on purpose
};

TEST_F(Endurance, FiveHundredRequestsInOneProcess) {
    e2e::AttachedModule module(simulation_);
    e2e::ModuleHeap heap(module.Image());
    const machine::ComMemoryBalance com;
    const auto round = [&](int number) {
        const bool withRoutes = number % 25 == 0;
        Check(module.Configure(Present(withRoutes ? firstRoute : toStatic)), "Success");
        Check(module.Configure(Present(withRoutes ? secondRoute : toDhcp)), "Success");
        Check(module.Configure(Present(refused)), "Failure");
        Check(module.Configure(Present(toStatic)), "Success");
        Check(module.Configure(Present(toDhcp)), "Success");
    };
    round(0);
    const std::vector<std::string> heapBefore = heap.Outstanding();
    const endurance::ProcessState before = endurance::ReadProcessState();
    const std::size_t threadsBefore = CountThreads();
    const std::size_t keptBefore = kept_;
    for (int number = 1; number <= 100 && !HasFatalFailure(); ++number) {
        round(number);
    }
    const endurance::ProcessState after = endurance::ReadProcessState();
    // Four rounds with routes, each of an addition and of an addition and a deletion; two ends of
    // pipes for each child. The first addition deletes the second's route too.
    EXPECT_EQ(kept_ - keptBefore, 4U * (2 + 2) * 2);
    EXPECT_EQ(after.handles - before.handles, kept_ - keptBefore);
    EXPECT_EQ(after.modules, before.modules);
    EXPECT_EQ(CountThreads(), threadsBefore);
    EXPECT_EQ(com.OutstandingBlocks(), 0U);
    EXPECT_EQ(heap.Outstanding(), heapBefore);
    std::printf(
        "500 requests: handles %zu -> %zu (%zu kept on purpose), modules %zu, threads %zu, "
        "COM blocks 0, blocks of the module's memory %zu\n",
        before.handles, after.handles, kept_ - keptBefore, after.modules, threadsBefore,
        heapBefore.size());
}

TEST_F(Endurance, TwoHundredLivesOfTheModule) {
    const machine::ComMemoryBalance com;
    const auto live = [&](int number) {
        const bool withRoute = number % 50 == 0;
        const char* const text = withRoute ? (number % 100 == 0 ? firstRoute : secondRoute)
                                           : (number % 2 == 0 ? toStatic : toDhcp);
        Check(e2e::RunConfigure(simulation_, Present(text)), "Success");
    };
    live(0);
    const endurance::ProcessState before = endurance::ReadProcessState();
    const std::size_t threadsBefore = CountThreads();
    const std::size_t keptBefore = kept_;
    for (int number = 1; number <= 200 && !HasFatalFailure(); ++number) {
        live(number);
    }
    const endurance::ProcessState after = endurance::ReadProcessState();
    EXPECT_EQ(after.handles - before.handles, kept_ - keptBefore);
    EXPECT_EQ(after.modules, before.modules);
    EXPECT_EQ(CountThreads(), threadsBefore);
    EXPECT_EQ(com.OutstandingBlocks(), 0U);
    EXPECT_EQ(GetModuleHandleA("config.dll"), nullptr);
    std::printf(
        "200 lives: handles %zu -> %zu (%zu kept on purpose), modules %zu, threads %zu, COM "
        "blocks 0\n",
        before.handles, after.handles, kept_ - keptBefore, after.modules, threadsBefore);
}

}  // namespace
