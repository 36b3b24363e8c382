#include "host/CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <string>
#include <utility>
#include <vector>

#include "common/util/Strings.h"
#include "host/Completion.h"
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
#include "host/fleet/FleetCommand.h"
#include "host/init/InitCommand.h"
#include "host/snapshot/SnapshotCommand.h"
#include "toolbox/config/ModuleVersion.h"

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

/// Thrown where the command line asks for the text instead of anything else.
struct Printed {
    std::string text;
};

/// The program and the module that it is built with have one version.
std::string VersionText() {
    return util::Format("toolbox-host %d.%d.%d\n", MODULE_VERSION_MAJOR, MODULE_VERSION_MINOR,
                        MODULE_VERSION_BUILD);
}

constexpr const char* kExitCodes =
    "Exit codes:\n"
    "    0  done, or nothing to do\n"
    "    1  failure of the module, the machine or a file; a plan that would fail\n"
    "    2  a plan that holds changes\n"
    "    3  a restart is needed\n"
    "   64  wrong usage\n"
    "   65  a configuration or machine file is bad or cannot be read\n"
    "  130  interrupted; 141 the reader of the output has gone; 143 ended from outside\n";

/// What stands below the help of each level.
void AddFooters(CLI::App& app) {
    app.footer(std::string(kExitCodes) +
               "\nExample:\n  toolbox-host configure --plan site.ini\n"
               "Each subcommand has a --help of its own.");
    app.get_subcommand("configure")
        ->footer(std::string(kExitCodes) +
                 "\n--fail takes NAME[#N][=CODE], by default every call "
                 "and its usual code. NAME[argument~text]\nrestricts it to calls with such an "
                 "argument; call:N is the Nth of all calls. The names:\n" +
                 FaultNames() +
                 "\n\nExample:\n  toolbox-host configure --plan site.ini --machine office.json "
                 "--fail EnableStatic=84");
    app.get_subcommand("check")->footer(
        "Exit codes: 0 no error; 65 errors, with --strict warnings too, or a file that is missing "
        "or bad; 64 wrong usage\n\nExample:\n  toolbox-host check --strict site.ini\n"
        "  toolbox-host check office.ini shop.ini --machine standard.json --format sarif");
    app.get_subcommand("fleet")->footer(
        std::string(kExitCodes) +
        "\nThe code is the worst of all machines': 1 before 65, 65 before 2, 2 before 0.\n\n"
        "Examples:\n  toolbox-host fleet machines\n"
        "  toolbox-host fleet machines --file site.ini --format json");
    app.get_subcommand("snapshot")
        ->footer(
            "Exit codes: 0 written; 1 failure; 64 wrong usage\n\n"
            "Example:\n  toolbox-host snapshot --output this.json");
    app.get_subcommand("init")->footer(
        "Exit codes: 0 written; 1 failure, also where no file can describe the machine; 64 wrong "
        "usage;\n65 the machine file is bad or cannot be read\n\n"
        "Example:\n  toolbox-host init --machine office.json --output office.ini");
    app.get_subcommand("version")->footer(
        "Exit codes: 0 printed; 1 no module\n\nExample:\n  toolbox-host version");
    app.get_subcommand("update-info")
        ->footer(
            "Exit codes: 0 answered; 1 no module; 64 wrong usage\n\n"
            "Example:\n  toolbox-host update-info --count 2");
    app.get_subcommand("send")->footer(
        "Exit codes: 0 success; 1 failure; 3 a restart is needed; 64 wrong usage\n\n"
        "Example:\n  toolbox-host send Internal UpdateInfo Auto-Update-Count=2");
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
    AddFile(app, "--module", options.module,
            "The module's file; default: config.dll beside this program");
    AddChoice<Format>(app, "--format",
                      "How results are printed; sarif: those of check, for code scanning",
                      {{"text", Format::kText}, {"json", Format::kJson}, {"sarif", Format::kSarif}},
                      options.format);
    AddChoice<Colours>(
        app, "--color",
        "Whether results have colours; auto: on a terminal, unless NO_COLOR is not empty",
        {{"auto", Colours::kAuto}, {"always", Colours::kAlways}, {"never", Colours::kNever}},
        options.colours);
    configure::AddConfigureCommand(app, options, action);
    fleet::AddFleetCommand(app, options, action);
    snapshot::AddSnapshotCommand(app, action);
    init::AddInitCommand(app, options, action);
    check::AddCheckCommand(app, action);
    AddMessageCommands(app, options, action);

    app.add_flag_callback(
        "--version", [] { throw Printed{VersionText()}; }, "Print this program's version");
    app.add_option_function<std::string>(
           "--completion", [&app](const std::string&) { throw Printed{BashCompletion(app)}; },
           "Print the completion for a shell")
        ->check(CLI::IsMember({"bash"}).description(""))
        ->type_name("bash");
    AddFooters(app);

    const auto print = [&](const std::string& text) {
        Output output(Format::kText, Colours::kNever, data, notes);
        output.Raw(ToUtf8(text));
        return output.Finish(kDone);
    };
    try {
        app.parse(argc, argv);
        if (options.format == Format::kSarif && !app.got_subcommand("check")) {
            throw CLI::ValidationError("--format", "only check gives sarif");
        }
    } catch (const Printed& printed) {
        return print(printed.text);
    } catch (const CLI::CallForHelp&) {
        return print(app.help());
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
