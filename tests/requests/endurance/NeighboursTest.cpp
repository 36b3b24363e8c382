// What requests to one loaded module see of each other: nothing of a domain or its account.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <functional>
#include <string>
#include <thread>
#include <utility>

#include "host/LogSink.h"
#include "host/Message.h"
#include "host/Module.h"
#include "machine/Actions.h"
#include "tests/requests/cases/CaseFile.h"
#include "tests/requests/harness/ModuleRun.h"
#include "tests/requests/harness/PresentedFile.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

/// Does something once, where this thread throws for the first time.
class AtFirstThrow {
public:
    explicit AtFirstThrow(std::function<void()> action)
        : action_(std::move(action)), handler_(AddVectoredExceptionHandler(1, &Look)) {
        active_ = this;
    }
    ~AtFirstThrow() {
        RemoveVectoredExceptionHandler(handler_);
        active_ = nullptr;
    }
    AtFirstThrow(const AtFirstThrow&) = delete;
    AtFirstThrow& operator=(const AtFirstThrow&) = delete;

private:
    static LONG CALLBACK Look(EXCEPTION_POINTERS* exception) {
        constexpr DWORD kGccThrow = 0x20474343;
        constexpr DWORD kMicrosoftThrow = 0xE06D7363;
        const DWORD code = exception->ExceptionRecord->ExceptionCode;
        if ((code == kGccThrow || code == kMicrosoftThrow) &&
            GetCurrentThreadId() == active_->thread_) {
            if (const auto action = std::exchange(active_->action_, nullptr)) {
                action();
            }
        }
        return EXCEPTION_CONTINUE_SEARCH;
    }

    static AtFirstThrow* active_;
    std::function<void()> action_;
    DWORD thread_ = GetCurrentThreadId();
    void* handler_;
};

AtFirstThrow* AtFirstThrow::active_ = nullptr;

class Neighbours : public testing::Test {
protected:
    explicit Neighbours(const char* machine = "member")
        : simulation_(cases::LoadBaseMachine(machine)) {
        simulation_.SetProgramFile(agent_.Program());
    }

    requests::RunResult Configure(requests::AttachedModule& module, const std::string& wish) const {
        const std::string text =
            "[Networking]\nDomainUsername=eravbw\nDomainPassword=6-rZ-avbW\n" + wish;
        return module.Configure(requests::PresentedFile(agent_, "wish.ini", text).Present());
    }

    requests::AgentFolder agent_;
    machine::Simulation simulation_;
};

TEST_F(Neighbours, ADomainNameOfAnEarlierRequestIsForgotten) {
    const machine::State member = simulation_.GetState();
    machine::State withoutDnsName = member;
    withoutDnsName.membership = machine::Membership::OfDomain("OLD", "");
    const std::pair<const char*, const char*> cases[] = {
        {"Workgroup=False\nDNSDomain=corp.example\n", "(Name=\"corp.example\""},
        {"DSOrganizationalUnit=West\n", "bind LDAP://OU=West as OLD\\joiner"},
        {"Workgroup=True\nDomain=SALES\n", "(UserName=\"OLD\\joiner\""},
    };
    requests::AttachedModule module(simulation_);
    for (const auto& [wish, action] : cases) {
        simulation_.SetState(member);
        EXPECT_EQ(Configure(module, "DSOrganizationalUnit=East/Sales\n").reply["Result"],
                  "Success");
        simulation_.SetState(withoutDnsName);
        const auto actions = machine::ListActions(Configure(module, wish).calls);
        ASSERT_FALSE(actions.empty()) << wish;
        EXPECT_THAT(actions.front(), HasSubstr(action));
    }
}

class WorkgroupNeighbours : public Neighbours {
protected:
    WorkgroupNeighbours() : Neighbours("workgroup") {}
};

TEST_F(WorkgroupNeighbours, AMissingFileOnAnotherThreadLeavesAJoinItsAccount) {
    requests::AttachedModule module(simulation_);
    simulation_.SetFaultPlan(machine::FaultPlan::Parse("JoinDomainOrWorkgroup#1=2"));
    std::int32_t neighbour = -1;
    const AtFirstThrow betweenTheAttempts([&] {
        std::thread([&] {
            const host::Module same(host::Module::DefaultPath());
            host::LogSink log([](const host::LogLine&) {});
            host::Message message("Internal", "Configure");
            message.Add("Filename", agent_.Program());
            neighbour = same.Send(message, log);
        }).join();
    });
    requests::RunResult run = Configure(module, "Workgroup=False\nDNSDomain=corp.example\n");
    EXPECT_EQ(neighbour, 0);
    EXPECT_EQ(run.reply["Result"], "Reboot");
    EXPECT_THAT(machine::ListActions(run.calls),
                ElementsAre(testing::EndsWith("-> 2"), testing::EndsWith("-> 0")));
}

}  // namespace
