// Many requests in one process, and many lives of the module in one: nothing grows but what is kept
// open on purpose.
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "machine/Balance.h"
#include "machine/ComMemoryBalance.h"
#include "machine/ModuleHeap.h"
#include "tests/requests/cases/CaseFile.h"
#include "tests/requests/endurance/ProcessState.h"
#include "tests/requests/harness/ModuleRun.h"
#include "tests/requests/harness/PresentedFile.h"
#include "tests/support/Sample.h"

namespace {

std::string Networking(const std::string& unit) {
    return "[Networking]\nDomainUsername=eravbw\nDomainPassword=6-rZ-avbW\n"
           "DSOrganizationalUnit=" +
           unit + "\n";
}

constexpr const char* kDhcp =
    "[TCP/IP]\nDescription=A\nDHCP=true\nDNS-Server-Count=1\nDNS-Server0=10.0.1.4\n"
    "DNS-SuffixSearchOrder=corp.example\nStatic-Route-Count=";

/// Two configurations that each undo the other, so that every request has work to do.
const std::string kToStatic =
    "[TCP/IP]\nDescription=A\nDHCP=false\nAddress=10.0.1.60\nNetmask=255.255.255.0\n"
    "Gateway=10.0.1.1\nDNS-Server-Count=1\nDNS-Server0=10.0.1.3\n"
    "DNS-SuffixSearchOrder=lab.example\nStatic-Route-Count=-1\n" +
    Networking("West");
const std::string kToDhcp = kDhcp + std::string("-1\n") + Networking("East/Sales");
/// Each adds the route that the other deletes: one child to add and one to delete.
const std::string kFirstRoute =
    kDhcp + std::string("1\nRoute0=10.40.0.0,255.255.0.0,10.0.1.1,,1,\n");
const std::string kSecondRoute =
    kDhcp + std::string("1\nRoute0=10.50.0.0,255.255.0.0,10.0.1.1,,1,\n");
const std::string kRefused = "[TCP/IP]\n[NicEntry]\n";

class Endurance : public testing::Test {
protected:
    Endurance() { simulation_.SetProgramFile(agent_.Program()); }

    std::string Present(const std::string& text) const {
        return requests::PresentedFile(agent_, "enduring.ini", text).Present();
    }

    /// Checks a request and forgets its record.
    void Check(const requests::RunResult& run, const char* result) {
        ASSERT_EQ(run.reply.at("Result"), result) << testing::PrintToString(run.errors);
        ASSERT_EQ(run.comBlocks, 0U);
        ASSERT_EQ(run.unexpected, std::vector<std::string>());
        const machine::Balance balance =
            machine::Weigh(simulation_.GetLedger(), simulation_.GetTrace().Entries());
        ASSERT_EQ(balance.leaks, std::vector<std::string>());
        for (const auto& [kind, count] : balance.kept) {
            kept_ += count;
        }
        simulation_.GetLedger().Clear();
        simulation_.ForgetCalls();
    }

    /// Nothing grows from the first round on but what is kept open on purpose. Gives how many
    /// handles that is.
    template <class Round>
    std::size_t Repeat(int times, Round round) {
        const machine::ComMemoryBalance com;
        round(0);
        const endurance::ProcessState before = endurance::ReadProcessState();
        const std::size_t keptBefore = kept_;
        for (int number = 1; number <= times && !HasFatalFailure(); ++number) {
            round(number);
        }
        const endurance::ProcessState after = endurance::ReadProcessState();
        const std::size_t kept = kept_ - keptBefore;
        EXPECT_EQ(after.handles - before.handles, kept);
        EXPECT_EQ(after.modules, before.modules);
        EXPECT_EQ(after.threads, before.threads);
        // A list of this program may still have grown.
        EXPECT_LE(after.largeBlocks, before.largeBlocks + 2);
        EXPECT_EQ(com.OutstandingBlocks(), 0U);
        std::printf(
            "%d rounds: handles %zu -> %zu (%zu kept on purpose), modules %zu, threads %zu\n",
            times, before.handles, after.handles, kept, after.modules, after.threads);
        return kept;
    }

    requests::AgentFolder agent_;
    machine::Simulation simulation_{cases::LoadBaseMachine("member")};
    std::size_t kept_ = 0;  // handles left open on purpose
};

TEST_F(Endurance, ManyRequestsInOneProcess) {
    const auto rounds =
        static_cast<int>(std::max<std::uint64_t>(25, support::SampleOf(25, 100, 100)));
    requests::AttachedModule module(simulation_);
    machine::ModuleHeap heap(module.Image());
    std::vector<std::string> heapBefore;
    const std::size_t kept = Repeat(rounds, [&](int number) {
        const bool withRoutes = number % 25 == 0;
        Check(module.Configure(Present(withRoutes ? kFirstRoute : kToStatic)), "Success");
        Check(module.Configure(Present(withRoutes ? kSecondRoute : kToDhcp)), "Success");
        Check(module.Configure(Present(kRefused)), "Failure");
        Check(module.Configure(Present(kToStatic)), "Success");
        Check(module.Configure(Present(kToDhcp)), "Success");
        if (number == 0) {
            heapBefore = heap.Outstanding();
        }
    });
    // A round with routes has an addition, and an addition and a deletion of two; two ends of pipes
    // stay open for each child. The first addition deletes the second's route too, and once the
    // default routes: the static gateway has become the second of them.
    EXPECT_EQ(kept, static_cast<std::size_t>(rounds / 25) * (2 + 2) * 2 + 2);
    EXPECT_EQ(heap.Outstanding(), heapBefore);
}

TEST_F(Endurance, ManyLivesOfTheModule) {
    Repeat(static_cast<int>(support::SampleOf(50, 200, 200)), [&](int number) {
        const bool withRoute = number % 50 == 0;
        const std::string& text = withRoute ? (number % 100 == 0 ? kFirstRoute : kSecondRoute)
                                            : (number % 2 == 0 ? kToStatic : kToDhcp);
        Check(requests::RunConfigure(simulation_, Present(text)), "Success");
    });
    EXPECT_EQ(GetModuleHandleA("config.dll"), nullptr);
}

}  // namespace
