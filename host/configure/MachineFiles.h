// Machine files and traces of this program's runs.
#pragma once

#include <string>

#include "machine/State.h"
#include "machine/Trace.h"

namespace host::configure {

/// Throws HostError (bad input) saying what is wrong with the file and where.
machine::State LoadMachine(const std::string& file);

/// Writes the machine. Without `withPasswords` those of the directory's accounts are left out: an
/// account then refuses every log-on.
void SaveMachine(machine::State machine, const std::string& file, bool withPasswords);

/// Writes the trace in the format that the name asks for. Account names stand enciphered in the
/// configuration file, so they are masked like the passwords.
void WriteTrace(machine::Trace trace, const std::string& file);

}  // namespace host::configure
