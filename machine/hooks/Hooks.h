// The functions that stand in for imports of an attached image, by subject.
#pragma once

#include <windows.h>

#include <string_view>
#include <vector>

#include "machine/Call.h"
#include "machine/ImportTable.h"

namespace machine {

using Hooks = std::vector<Hook>;

/// Whether a call has to do with the simulated machine. Asked before the call is recorded and
/// without the simulation's lock: a thread that starts or ends may hold the loader's, which a call
/// that is being served may want.
struct EveryCall {
    bool operator()(const Core& /*core*/, const auto&... /*arguments*/) const { return true; }
};

/// What an attached image calls in the place of a platform function. It decides once whether the
/// active simulation serves the call, and holds that simulation until the call is over. Any other
/// call goes on to the platform's function: one that does not concern the machine, one of the
/// simulation's own, and one of a thread that took this address from the table just before the last
/// simulation put the table back.
template <auto serve, typename Concern, typename Served = decltype(serve)>
struct Entrance;

template <auto serve, typename Concern, typename Result, typename... Arguments>
struct Entrance<serve, Concern, Result (*)(Core&, Arguments...)> {
    static Result WINAPI Enter(Arguments... arguments) {
        if (const ServingCore core; core && Concern()(*core, arguments...)) {
            return serve(*core, arguments...);
        }
        return reinterpret_cast<Result(WINAPI*)(Arguments...)>(original)(arguments...);
    }

    static inline void* original = nullptr;
};

template <auto serve, typename Concern = EveryCall>
Hook MakeHook(std::string_view name) {
    using Place = Entrance<serve, Concern>;
    return {name, reinterpret_cast<void*>(&Place::Enter), &Place::original};
}

void AddComHooks(Hooks& hooks);
void AddDirectoryHooks(Hooks& hooks);
void AddFileHooks(Hooks& hooks);
void AddIdentityHooks(Hooks& hooks);
void AddLibraryHooks(Hooks& hooks);
void AddNetHooks(Hooks& hooks);
void AddPipeHooks(Hooks& hooks);
void AddProcessHooks(Hooks& hooks);
void AddRegistryHooks(Hooks& hooks);

const Hooks& AllHooks();

/// Whether an import that no hook serves reaches the machine, so that a simulation is not complete
/// without it.
bool ReachesMachine(std::string_view library, std::string_view function);

}  // namespace machine
