// The way back from what a configuration file makes of a machine, made before anything changes.
#pragma once

#include <string>
#include <vector>

#include "host/configure/Passes.h"
#include "machine/State.h"

namespace host::undo {

struct Undo {
    std::string text;  ///< the configuration file that undoes it
    /// What it does not bring back, a line each. The file names it too.
    std::vector<std::string> byHand;
    machine::State foreseen;  ///< the machine that it starts from: after the run and its restarts
};

/// Runs the file of the request on a copy of the machine until the module is done, and then the
/// file that undoes it, so that what that one leaves is known.
Undo MakeUndo(const configure::Request& request, const machine::State& machine);

/// What is to be done by hand where the machine `now` should be the machine `wanted`: "machine: DNS
/// suffixes: is corp.example, was none".
std::vector<std::string> ListLeft(const machine::State& now, const machine::State& wanted);

/// For each adapter that carries a default route and changes its address or its gateways: "PCI
/// 2/1/0 "Ethernet" (index 1): address 192.0.2.5/255.255.255.0 -> ...".
std::vector<std::string> ListLockOuts(const machine::State& before, const machine::State& after);

}  // namespace host::undo
