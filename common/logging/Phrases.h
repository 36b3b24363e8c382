#pragma once

/// The parts of log lines and replies by which toolbox-host, like operators, tells what the module
/// does. The module writes them; nobody else spells them.
namespace logging {

// "ConfigBuilder::RunConfig(): about to execute class config::command::SetDns (...)"
inline constexpr char kRunsCommand[] = "ConfigBuilder::RunConfig()";
inline constexpr char kRunsAdapterCommand[] = "ConfigureNic::Execute()";
inline constexpr char kAboutToExecute[] = ": about to execute ";
inline constexpr char kAdapterIndex[] =
    "ConfigureNic::Execute(): NIC index (Win32_NetworkAdapterConfiguration.Index)=";

// In the description of a command: the account follows, then "}".
inline constexpr char kAccount[] = "{User=";

inline constexpr char kAboutToAnalyze[] =
    "Configure::HandleMessage(): about to call Analyze() and RunConfig()";
// The error's code follows in hexadecimal. The first is for errors of the configuration, whatever
// its words.
inline constexpr char kCaughtConfigError[] = "Configure::HandleMessage(): caught win32 error, err=";
inline constexpr char kCaughtOtherError[] =
    "Configure::HandleMessage(): caught general (win32) error, err=";
// A format: of an error that left the handler.
inline constexpr char kUnhandledError[] = "Exception Details: %s:%d - %s (error = %d)";

// "Status-Module" of a run that stopped at a restart marker although the file says that a restart
// is not to be reported.
inline constexpr char kMarkerModule[] = "Tovrune";

}  // namespace logging
