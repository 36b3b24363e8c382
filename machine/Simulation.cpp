#include "machine/Simulation.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "machine/Call.h"
#include "machine/Core.h"
#include "machine/RealCalls.h"
#include "machine/com/ComObject.h"
#include "machine/hooks/HandleBook.h"
#include "machine/hooks/Hooks.h"
#include "machine/model/Network.h"

namespace machine {
namespace {

constexpr std::uint64_t kRestartTakes = 60'000;  // milliseconds

/// The lock of a core for the time of an access from outside.
class Locked {
public:
    explicit Locked(Core& core) : lock_(core.Lock()) { EnterCriticalSection(lock_); }
    ~Locked() { LeaveCriticalSection(lock_); }
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;

private:
    CRITICAL_SECTION* lock_;
};

/// Cores of ended simulations of which a module still holds something. They live to the end of the
/// process, so that a late release finds valid memory.
std::vector<std::shared_ptr<Core>>& Abandoned() {
    static std::vector<std::shared_ptr<Core>> cores;
    return cores;
}

/// Real handles whose closing a fault plan refused.
void CloseExcused(const Ledger& ledger) {
    for (const auto& [kind, identity] : ledger.Excused()) {
        if (kind == kPipeHandle || kind == kProcessHandle || kind == kThreadHandle ||
            kind == kFileHandle) {
            Real().CloseHandle(reinterpret_cast<HANDLE>(identity));
        }
    }
}

}  // namespace

Simulation::Simulation(State state) {
    if (Core::Active() != nullptr) {
        throw std::logic_error("a simulated machine is active already");
    }
    // What serves calls must not itself be looked up through a patched table later.
    Real();
    AllHooks();
    core_ = std::make_shared<Core>();
    core_->comSecuritySet = state.system.comSecuritySet;
    core_->state = std::move(state);
    Core::SetActive(core_);
}

Simulation::~Simulation() {
    const Locked locked(*core_);
    core_->images.clear();
    Core::SetActive(nullptr);
    CloseExcused(core_->ledger);
    if (!core_->ledger.Outstanding().empty()) {
        Abandoned().push_back(core_);
    }
}

void Simulation::Attach(HMODULE image) {
    const Locked locked(*core_);
    for (const Import& import : ListImports(image)) {
        if (ReachesMachine(import.library, import.function)) {
            core_->unservedImports.push_back(import.library + "!" + import.function);
        }
    }
    core_->images.push_back(std::make_unique<ImportTable>(image, AllHooks()));
}

void Simulation::Detach(HMODULE image) {
    const Locked locked(*core_);
    std::erase_if(core_->images, [image](const auto& table) { return table->Image() == image; });
}

const State& Simulation::GetState() {
    const Locked locked(*core_);
    return core_->state;
}

void Simulation::SetState(State state) {
    const Locked locked(*core_);
    core_->state = std::move(state);
}

const Trace& Simulation::GetTrace() const {
    return core_->trace;
}

void Simulation::ForgetCalls() {
    const Locked locked(*core_);
    core_->trace.Clear();
    std::erase_if(core_->objects, [](const auto& entry) { return !entry.second->IsHeld(); });
}

Ledger& Simulation::GetLedger() {
    return core_->ledger;
}

const FaultPlan& Simulation::GetFaultPlan() const {
    return core_->faults;
}

void Simulation::SetFaultPlan(FaultPlan plan) {
    const Locked locked(*core_);
    core_->faults = std::move(plan);
}

const std::vector<std::string>& Simulation::Unexpected() const {
    return core_->unexpected;
}

std::vector<std::string> Simulation::TakeUnexpected() {
    const Locked locked(*core_);
    return std::exchange(core_->unexpected, {});
}

const std::vector<std::string>& Simulation::UnservedImports() const {
    return core_->unservedImports;
}

std::chrono::nanoseconds Simulation::TimeInCalls() const {
    const Locked locked(*core_);
    return core_->timeInCalls;
}

void Simulation::Settle() {
    const Locked locked(*core_);
    model::Settle(core_->state);
}

void Simulation::Restart() {
    Call call(*core_, "restart of the machine", {}, Failing::kNever);
    core_->clock += kRestartTakes;
    ApplyRestart(core_->state);
    core_->comSecuritySet = core_->state.system.comSecuritySet;
    call.Note("done");
}

void Simulation::SetApartment(HostApartment apartment) {
    const Locked locked(*core_);
    core_->apartments.erase(GetCurrentThreadId());
    if (apartment != HostApartment::kNone) {
        core_->apartments[GetCurrentThreadId()] = {1, 0,
                                                   apartment == HostApartment::kMultithreaded};
    }
}

bool Simulation::IsInApartment() const {
    const Locked locked(*core_);
    return core_->apartments.contains(GetCurrentThreadId());
}

void Simulation::WatchRoutes(std::function<void()> watcher) {
    const Locked locked(*core_);
    core_->routeWatcher = std::move(watcher);
}

void Simulation::SetProgramFile(std::string path) {
    const Locked locked(*core_);
    core_->programFile = std::move(path);
}

}  // namespace machine
