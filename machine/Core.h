// What the simulation and its hooks share: the state, the records and what is handed out at the
// moment.
#pragma once

#include <windows.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "machine/FaultPlan.h"
#include "machine/HandleSet.h"
#include "machine/ImportTable.h"
#include "machine/Ledger.h"
#include "machine/State.h"
#include "machine/Trace.h"
#include "machine/route/RouteChild.h"

namespace machine {

class ComObjectBase;

/// A thread's standing with COM.
struct Apartment {
    std::uint64_t initialisations = 0;
    std::uint64_t refusals = 0;  ///< initialisations that the fault plan made fail
    bool multithreaded = false;
};

class Core : public std::enable_shared_from_this<Core> {
public:
    Core();
    ~Core();
    Core(const Core&) = delete;
    Core& operator=(const Core&) = delete;

    /// The simulation that serves calls now; null when there is none.
    static std::shared_ptr<Core> Active();
    static void SetActive(std::shared_ptr<Core> core);

    State state;
    Trace trace;
    Ledger ledger;
    FaultPlan faults;
    std::vector<std::string> unexpected;
    std::vector<std::string> unservedImports;
    std::uint64_t clock = 0;  ///< milliseconds
    std::chrono::nanoseconds timeInCalls{};

    std::map<DWORD, Apartment> apartments;
    bool comSecuritySet = false;
    std::map<std::uintptr_t, std::string>
        openKeys;  ///< by handle: the path below HKEY_LOCAL_MACHINE
    std::map<std::uintptr_t, std::unique_ptr<std::byte[]>> buffers;  ///< of LSA and NetApi
    /// By interface pointer; those already released too.
    std::unordered_map<const void*, std::unique_ptr<ComObjectBase>> objects;
    std::function<void()> routeWatcher;     ///< told of each route program; may be empty
    std::vector<RouteChild> routeChildren;  ///< whose handles are not closed yet
    HandleSet standardHandles;              ///< given out by GetStdHandle
    std::vector<std::unique_ptr<ImportTable>> images;
    std::string programFile;  ///< empty: the real one

    /// On the clock, and for what waits for its time.
    void PassTime(std::uint64_t milliseconds);
    /// A handle value that the process can have no real handle of.
    std::uintptr_t NewHandle();
    void RecordUnexpected(std::string what);
    bool ComIsInitialised() const;
    /// The route program behind the handle; null when there is none.
    RouteChild* FindRouteChild(HANDLE process);

    CRITICAL_SECTION* Lock() { return &lock_; }

private:
    std::uintptr_t nextHandle_;
    CRITICAL_SECTION lock_ = {};
};

}  // namespace machine
