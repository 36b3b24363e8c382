// A process that has no slot of thread-local data left when it loads the module, and no memory for
// it afterwards.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <atomic>
#include <latch>
#include <thread>
#include <vector>

#include "host/Module.h"
#include "machine/ImportTable.h"
#include "tests/toolbox/RecordingHost.h"

namespace {

class EverySlot {
public:
    EverySlot() {
        for (DWORD slot = FlsAlloc(nullptr); slot != FLS_OUT_OF_INDEXES; slot = FlsAlloc(nullptr)) {
            slots_.push_back(slot);
        }
    }
    ~EverySlot() { std::ranges::for_each(slots_, &FlsFree); }
    EverySlot(const EverySlot&) = delete;
    EverySlot& operator=(const EverySlot&) = delete;

private:
    std::vector<DWORD> slots_;
};

void* NoMemory() {
    return nullptr;
}

/// Sends a null message; whether the host learns all about the error and keeps its own last one.
bool SendNull(const ToolboxAPI& api) {
    toolbox_tests::RecordingHost host("", "");
    SetLastError(GetCurrentThreadId());
    return api.DoMagic(nullptr, &host) == 0 && GetLastError() == GetCurrentThreadId() &&
           host.calls ==
               std::vector<std::string>{
                   "Log 0 Toolbox-Main:103 Toolbox::DoMagic caught an unhandled exception",
                   "Log 0 Exception Details: Toolbox-Main:71 - DoMagic - Bad Parameter "
                   "(NULL) (error = 0)"};
}

TEST(ExhaustedProcess, ErrorsInsideTheModuleReachTheHostOnEveryThread) {
    constexpr int kThreads = 40;
    const EverySlot slots;
    const ToolboxAPI* api = nullptr;
    std::atomic<int> right = 0;
    std::latch loaded(1);
    std::latch sent(kThreads);
    const auto act = [&] {
        loaded.wait();
        right += SendNull(*api) ? 1 : 0;
        sent.arrive_and_wait();  // all of them have had an error before the first one ends
    };
    std::vector<std::thread> threads;
    while (threads.size() < kThreads / 2) {
        threads.emplace_back(act);
    }
    const host::Module module(host::Module::DefaultPath());
    const auto image = static_cast<HMODULE>(module.Handle());
    api = reinterpret_cast<ToolboxAPI* (*)()>(
        reinterpret_cast<void*>(GetProcAddress(image, "GetToolboxAPI")))();
    const std::vector<machine::Hook> hooks = {{"malloc", reinterpret_cast<void*>(&NoMemory)},
                                              {"calloc", reinterpret_cast<void*>(&NoMemory)}};
    const machine::ImportTable noMemory(image, hooks);
    loaded.count_down();
    while (threads.size() < kThreads) {
        threads.emplace_back(act);
    }
    std::ranges::for_each(threads, &std::thread::join);
    EXPECT_EQ(right, kThreads);
}

}  // namespace
