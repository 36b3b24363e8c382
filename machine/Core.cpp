#include "machine/Core.h"

#include <algorithm>
#include <mutex>
#include <utility>

#include "machine/LeafLock.h"
#include "machine/com/ComObject.h"
#include "machine/model/Network.h"

namespace machine {
namespace {

constinit LeafLock activeLock;
constinit std::shared_ptr<Core> activeCore;

/// Real handles are small multiples of 4; these stand far above them.
constexpr std::uintptr_t kFirstHandle = 0x5A000004;

}  // namespace

Core::Core() : nextHandle_(kFirstHandle) {
    InitializeCriticalSection(&lock_);
}

Core::~Core() {
    DeleteCriticalSection(&lock_);
}

std::shared_ptr<Core> Core::Active() {
    const std::lock_guard lock(activeLock);
    return activeCore;
}

void Core::SetActive(std::shared_ptr<Core> core) {
    const std::lock_guard lock(activeLock);
    activeCore.swap(core);  // the one before ends outside the lock
}

void Core::PassTime(std::uint64_t milliseconds) {
    clock += milliseconds;
    model::PassTime(state, milliseconds);
}

std::uintptr_t Core::NewHandle() {
    return std::exchange(nextHandle_, nextHandle_ + 4);
}

void Core::RecordUnexpected(std::string what) {
    unexpected.push_back(std::move(what));
}

bool Core::ComIsInitialised() const {
    // A thread of its own need not initialise COM once another one opened the multithreaded
    // apartment.
    return std::ranges::any_of(apartments, [](const auto& entry) {
        const auto& [thread, apartment] = entry;
        return apartment.initialisations != 0 &&
               (apartment.multithreaded || thread == GetCurrentThreadId());
    });
}

RouteChild* Core::FindRouteChild(HANDLE process) {
    const auto found = std::ranges::find(routeChildren, process, &RouteChild::Process);
    return found == routeChildren.end() ? nullptr : &*found;
}

}  // namespace machine
