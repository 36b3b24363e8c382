// The terminal, and "./run", which stands between it and the program where that runs under Wine:
// Wine's own console takes control sequences for characters and is slow. "./run" hands on, in
// variables of the environment,
//
//   TOOLBOX_RUN       its folder, as a Windows path. Temporary files go there; a pipe "notes" in it
//                     leads to standard error, and where there is none both streams are one; and
//                     the program makes the file "ended" in it at its own end
//   TOOLBOX_TERMINAL  which streams lead to the terminal: "data", "notes", both or none
//   TOOLBOX_COLUMNS   how wide it is
//   TOOLBOX_NAME      what the user has called
#pragma once

#include <string>

#include "host/TextStream.h"

namespace host {

/// To be called first: makes standard error what "./run" says it is, for the C library too.
void TakeStandardError();

/// Where standard output and standard error lead to. A console is told to obey control sequences.
Destination WhereOutputLeads();
Destination WhereErrorsLead();

/// What the user calls this program: "./run", or its own name.
std::string ProgramName();

/// The folder of "./run", in the system code page and without a separator at the end; empty without
/// one.
std::string RunFolder();

/// Tells "./run" that the program ends by itself and has said why, if something went wrong: Wine
/// says 0 of a program that was ended.
void TellTheEnd();

}  // namespace host
