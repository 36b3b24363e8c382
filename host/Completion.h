#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace host {

/// A script for bash that completes the program's subcommands, options, their words, the names that
/// --fail knows, and files.
std::string BashCompletion(const CLI::App& app);

/// The names that --fail knows, in lines of a help text.
std::string FaultNames();

}  // namespace host
