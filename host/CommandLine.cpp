#include "host/CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <string>
#include <utility>
#include <vector>

#include "host/ExitCode.h"
#include "host/Files.h"
#include "host/HostError.h"
#include "host/MessageCommands.h"
#include "host/Module.h"
#include "host/Options.h"
#include "host/Spelling.h"
#include "host/Text.h"
#include "host/check/CheckCommand.h"
#include "host/configure/ConfigureCommand.h"
#include "host/init/InitCommand.h"
#include "host/snapshot/SnapshotCommand.h"

namespace host {

namespace {

std::string WithSuggestion(const std::string& text, const std::string& typed,
                           const std::vector<std::string>& known) {
    const std::string nearest = Nearest(typed, known);
    return nearest.empty() ? text : text + "; did you mean \"" + nearest + "\"?";
}

std::vector<std::string> SubcommandsOf(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::App* const subcommand : app.get_subcommands({})) {
        names.push_back(subcommand->get_name());
    }
    return names;
}

/// The long options that could have stood where one did: the program's and the chosen subcommand's.
std::vector<std::string> OptionsOf(const CLI::App& app) {
    std::vector<const CLI::App*> levels = {&app};
    for (const CLI::App* const chosen : app.get_subcommands()) {
        levels.push_back(chosen);
    }
    std::vector<std::string> names;
    for (const CLI::App* const level : levels) {
        for (const CLI::Option* const option : level->get_options()) {
            for (const std::string& name : option->get_lnames()) {
                names.push_back("--" + name);
            }
        }
    }
    return names;
}

/// A misspelt word comes before what else is wrong: it is often the reason.
std::string WhatIsWrong(const CLI::App& app, const CLI::ParseError& error) {
    const std::vector<std::string> rest = app.remaining(true);
    for (const std::string& word : rest) {
        if (word.starts_with("-") && word != "-") {
            const std::string option = word.substr(0, word.find('='));
            return WithSuggestion("there is no option \"" + option + "\"", option, OptionsOf(app));
        }
    }
    return app.get_subcommands().empty() && !rest.empty()
               ? WithSuggestion("there is no subcommand \"" + rest.front() + "\"", rest.front(),
                                SubcommandsOf(app))
               : error.what();
}

/// Whether JSON was asked for, whatever else is wrong with the arguments.
bool AsksForJson(int argc, const char* const* argv) {
    const std::vector<std::string> arguments(argv, argv + argc);
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (arguments[i] == "--format=json" ||
            (arguments[i] == "--format" && i + 1 < arguments.size() &&
             arguments[i + 1] == "json")) {
            return true;
        }
    }
    return false;
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
    return output.Finish(exitCode);
}

/// An option that takes one of these names, each with what it means.
template <typename Value>
void AddChoice(CLI::App& app, const std::string& option, const std::string& description,
               const std::vector<std::pair<std::string, Value>>& choices, Value& value) {
    std::vector<std::string> names(choices.size());
    std::ranges::transform(choices, names.begin(), &std::pair<std::string, Value>::first);
    app.add_option_function<std::string>(
           option,
           [choices, &value](const std::string& name) {
               value =
                   std::ranges::find(choices, name, &std::pair<std::string, Value>::first)->second;
           },
           description)
        ->check(CLI::IsMember(names).description(""))
        ->type_name(CLI::detail::join(names, "|"));
}

}  // namespace

int Run(int argc, const char* const* argv, TextStream& data, TextStream& notes) {
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
        ->type_name("FILE")
        ->check(NotEmpty());
    AddChoice<Format>(app, "--format", "How results are printed",
                      {{"text", Format::kText}, {"json", Format::kJson}}, options.format);
    AddChoice<Colours>(
        app, "--color", "Whether results have colours; auto: on a terminal, unless NO_COLOR is set",
        {{"auto", Colours::kAuto}, {"always", Colours::kAlways}, {"never", Colours::kNever}},
        options.colours);
    configure::AddConfigureCommand(app, options, action);
    snapshot::AddSnapshotCommand(app, action);
    init::AddInitCommand(app, options, action);
    check::AddCheckCommand(app, action);
    AddMessageCommands(app, options, action);

    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        Output output(Format::kText, Colours::kNever, data, notes);
        output.Raw(ToUtf8(app.help()));
        return output.Finish(kDone);
    } catch (const CLI::ParseError& error) {
        Output output(AsksForJson(argc, argv) ? Format::kJson : Format::kText, options.colours,
                      data, notes);
        output.Error(WhatIsWrong(app, error));
        output.Note("Run \"toolbox-host --help\" for more.");
        return output.Finish(kWrongUsage);
    }
    Output output(options.format, options.colours, data, notes);
    return Perform(action, output);
}

}  // namespace host
