// A simulated Windows machine that a loaded image runs on without knowing.
//
//     machine::Simulation simulation(machine::DefaultState());
//     simulation.Attach(GetModuleHandleA("config.dll"));
//     ... call the module ...
//     simulation.GetState(), .GetTrace(), .GetLedger().Outstanding(), .Unexpected()
//
// Attach replaces entries of the image's import table; calls that other images make are untouched,
// and so is what the image resolved by GetProcAddress earlier. Served calls may come from any
// thread; a runtime or a test framework in the image may have threads of its own, whose calls on
// handles of theirs pass through, at any moment of a simulation's life. One simulation is active in
// a process at a time; any number may follow one another. (A function that attaches the image it
// belongs to leaves the platform calls to others: the compiler may have read the table for it
// before.)
#pragma once

#include <windows.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "machine/FaultPlan.h"
#include "machine/Ledger.h"
#include "machine/State.h"
#include "machine/Trace.h"

namespace machine {

class Core;

enum class HostApartment { kNone, kSingleThreaded, kMultithreaded };

class Simulation {
public:
    /// Throws std::logic_error while another simulation exists.
    explicit Simulation(State state);
    /// Detaches from every image. Interfaces still held by the module stay valid memory.
    ~Simulation();
    Simulation(const Simulation&) = delete;
    Simulation& operator=(const Simulation&) = delete;

    /// Serves the image's platform calls from now on. The image must stay loaded until Detach (or
    /// the destructor) put its import table back. Throws std::system_error when its memory cannot
    /// be changed.
    void Attach(HMODULE image);
    void Detach(HMODULE image);

    /// The machine as it is now.
    const State& GetState();
    void SetState(State state);

    /// Read it while no served call is running.
    const Trace& GetTrace() const;
    /// Empties the trace and frees the objects that were released, for runs without end. A later
    /// use of one of those is no longer caught.
    void ForgetCalls();
    Ledger& GetLedger();
    const FaultPlan& GetFaultPlan() const;
    /// Puts a plan in force; its counts start here.
    void SetFaultPlan(FaultPlan plan);

    /// Calls that the machine does not know how to serve, each with its place in the trace. A test
    /// or a host must fail when there is one.
    const std::vector<std::string>& Unexpected() const;
    /// The same list, which begins anew: for a caller that expected them after all.
    std::vector<std::string> TakeUnexpected();
    /// Functions of system libraries that reach the machine, that an attached image imports and
    /// that no hook serves: "advapi32.dll!RegDeleteKeyA".
    const std::vector<std::string>& UnservedImports() const;

    /// Real time that was spent in served calls.
    std::chrono::nanoseconds TimeInCalls() const;

    // Lets time pass after a request: leases that it asked for arrive.
    void Settle();

    /// Makes effective what waits for a restart and renews what a restart renews: names,
    /// membership, leases, COM security. What the ledger holds stays there.
    void Restart();

    /// Puts the calling thread into an apartment, as a host may have entered it, or into none.
    void SetApartment(HostApartment apartment);
    /// Whether the thread is in any.
    bool IsInApartment() const;

    /// Has each start of the route program told, on the thread and under the lock of the call.
    void WatchRoutes(std::function<void()> watcher);

    /// What GetModuleFileNameA calls the running program; by default its real path.
    void SetProgramFile(std::string path);

private:
    std::shared_ptr<Core> core_;
};

}  // namespace machine
