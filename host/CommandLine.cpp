#include "host/CommandLine.h"

#include <CLI/CLI.hpp>
#include <exception>
#include <string>
#include <vector>

#include "host/ExitCode.h"
#include "host/HostError.h"
#include "host/MessageCommands.h"
#include "host/Module.h"
#include "host/Options.h"
#include "host/Text.h"
#include "host/check/CheckCommand.h"
#include "host/configure/ConfigureCommand.h"
#include "host/snapshot/SnapshotCommand.h"

namespace host {

namespace {

std::string WhatIsWrong(const CLI::App& app, const CLI::ParseError& error) {
    const std::vector<std::string> rest = app.remaining();
    const bool unknownSubcommand =
        app.get_subcommands().empty() && !rest.empty() && !rest.front().starts_with('-');
    return unknownSubcommand ? "there is no subcommand \"" + rest.front() + "\"" : error.what();
}

int Perform(const Action& action, Output& output) {
    int exitCode = kFailure;
    try {
        exitCode = action(output);
    } catch (const HostError& error) {
        output.Error(error.what());
        exitCode = error.Code();
    } catch (const std::exception& error) {
        output.Error(error.what());
    }
    output.Finish();
    return exitCode;
}

}  // namespace

int Run(int argc, const char* const* argv, std::ostream& data, std::ostream& notes) {
    CommonOptions options;
    options.module = Module::DefaultPath();
    Action action;

    CLI::App app("Loads the configuration module, as the agent would, and sends it messages.",
                 "toolbox-host");
    // "/etc/site.ini" is a file, not the Windows way to write an option.
    app.allow_windows_style_options(false);
    app.require_subcommand(1);
    app.fallthrough();
    app.add_option("--module", options.module,
                   "The module's file, else config.dll beside this program")
        ->type_name("FILE");
    app.add_option_function<std::string>(
           "--format",
           [&](const std::string& name) {
               options.format = name == "json" ? Format::kJson : Format::kText;
           },
           "How results are printed")
        ->check(CLI::IsMember({"text", "json"}))
        ->type_name("text|json");
    configure::AddConfigureCommand(app, options, action);
    snapshot::AddSnapshotCommand(app, action);
    check::AddCheckCommand(app, action);
    AddMessageCommands(app, options, action);

    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        data << ToUtf8(app.help());
        return kDone;
    } catch (const CLI::ParseError& error) {
        notes << "toolbox-host: " << ToLine(WhatIsWrong(app, error)) << '\n'
              << "Run \"toolbox-host --help\" for more.\n";
        return kWrongUsage;
    }
    Output output(options.format, data, notes);
    return Perform(action, output);
}

}  // namespace host
