// Machine files and traces of this program's runs.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

#include "host/Output.h"
#include "machine/State.h"
#include "machine/Trace.h"

namespace host::configure {

/// Throws HostError (bad input) saying what is wrong with the file and where.
machine::State LoadMachine(const std::string& file);

/// The machine that a command line names.
struct MachineChoice {
    std::string file;  ///< empty: the embedded machine, unless it is
    bool thisMachine = false;

    /// "this machine", "the embedded machine", the file
    std::string Name() const;
    /// The options that choose it, each behind a blank; none for the embedded machine.
    std::string Options() const;
    /// Notes what cannot be seen of this machine. Throws as LoadMachine does.
    machine::State Read(Output& output) const;
};

/// Adds "--machine" and "--this-machine". `choice` must outlive the command.
void AddMachineOptions(CLI::App& command, MachineChoice& choice);

/// Writes the machine. Without `withPasswords` those of the directory's accounts are left out: an
/// account then refuses every log-on.
void SaveMachine(machine::State machine, const std::string& file, bool withPasswords);

/// Writes the trace in the format that the name asks for. Account names stand enciphered in the
/// configuration file, so they are masked like the passwords.
void WriteTrace(machine::Trace trace, const std::string& file);

}  // namespace host::configure
