// The functions that stand in for imports of an attached image, by subject.
#pragma once

#include <string_view>
#include <vector>

#include "machine/ImportTable.h"

namespace machine {

using Hooks = std::vector<Hook>;

template <typename Function>
Hook MakeHook(std::string_view name, Function* function) {
    return {name, reinterpret_cast<void*>(function)};
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

// Whether an import that no hook serves reaches the machine, so that a simulation is not complete
// without it.
bool ReachesMachine(std::string_view library, std::string_view function);

}  // namespace machine
