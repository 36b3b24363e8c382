#include "host/configure/ConfigureCommand.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "common/util/FileUtils.h"
#include "host/ExitCode.h"
#include "host/Files.h"
#include "host/HostError.h"
#include "host/InputFile.h"
#include "host/Module.h"
#include "host/Text.h"
#include "host/configure/Faults.h"
#include "host/configure/Json.h"
#include "host/configure/MachineFiles.h"
#include "host/configure/Passes.h"
#include "host/configure/Report.h"
#include "host/configure/Result.h"
#include "host/report/Digest.h"
#include "host/report/PlanReport.h"
#include "host/undo/Undo.h"
#include "machine/State.h"

namespace host::configure {

namespace {

struct ConfigureOptions {
    std::string file;
    MachineChoice machine;
    bool yes = false;
    bool plan = false;
    bool untilDone = false;
    bool afterRestart = false;
    bool log = false;
    bool details = false;
    bool summary = false;
    std::vector<std::string> faults;
    std::string traceFile;
    std::string saveFile;
    std::string undoFile;
    std::string reportFile;
    bool withPasswords = false;
};

/// Combinations that the parser cannot express.
void CheckCombination(const ConfigureOptions& options) {
    const bool real = options.machine.thisMachine && !options.plan;
    if (real && !options.yes) {
        throw HostError(
            "--this-machine changes this machine: add --yes to do that, or --plan to "
            "see what would change",
            kWrongUsage);
    }
    if (real && (options.untilDone || options.afterRestart || !options.faults.empty() ||
                 !options.traceFile.empty() || !options.saveFile.empty())) {
        throw HostError(
            "--until-done, --after-restart, --fail, --trace and --save-machine are for simulated "
            "machines: this machine can neither be restarted nor watched from here",
            kWrongUsage);
    }
    if (options.plan && !options.saveFile.empty()) {
        throw HostError("--plan changes no machine, so --save-machine has nothing to save",
                        kWrongUsage);
    }
}

/// No output may end where the next run would read, or where another output goes.
void CheckFiles(const CommonOptions& common, const ConfigureOptions& options) {
    const NamedFile configuration{"the configuration file", options.file};
    const NamedFile machine{"the machine file", options.machine.file};
    const NamedFile module{"the module", common.module};
    RefuseToOverwrite(
        {"--trace", options.traceFile},
        {configuration, machine, module, {"what --save-machine writes", options.saveFile}});
    // A machine file may become what its run makes of it.
    RefuseToOverwrite({"--save-machine", options.saveFile}, {configuration, module});
    RefuseToOverwrite({"--undo-file", options.undoFile},
                      {configuration,
                       machine,
                       module,
                       {"what --save-machine writes", options.saveFile},
                       {"what --trace writes", options.traceFile}});
    RefuseToOverwrite({"--report", options.reportFile},
                      {configuration,
                       machine,
                       module,
                       {"what --save-machine writes", options.saveFile},
                       {"what --trace writes", options.traceFile},
                       {"what --undo-file writes", options.undoFile}});
}

bool HasAccounts(const machine::State& machine) {
    return std::ranges::any_of(
        machine.domains, [](const machine::Domain& domain) { return !domain.accounts.empty(); });
}

/// Who may be cut off by the change.
std::vector<std::string> Warnings(const std::vector<std::string>& lockOuts,
                                  const ConfigureOptions& options) {
    std::vector<std::string> lines;
    lines.reserve(lockOuts.size() + 1);
    for (const std::string& lockOut : lockOuts) {
        lines.push_back("Warning: the agent may lose its connection here: " + lockOut + ".");
    }
    // After a run a file could only lead to the machine that it left.
    if (!lockOuts.empty() && (options.plan || !options.undoFile.empty())) {
        lines.push_back(options.undoFile.empty()
                            ? "  --undo-file FILE writes a file that undoes it."
                            : "  " + options.undoFile + " undoes it.");
    }
    return lines;
}

std::vector<std::string> WayBack(const undo::Undo& undo, const std::string& file) {
    std::vector<std::string> lines = {"Undo: wrote " + file +
                                      (undo.byHand.empty()
                                           ? ", which undoes it."
                                           : ", which undoes it, except (to do by hand):")};
    for (const std::string& line : undo.byHand) {
        lines.push_back("  " + line);
    }
    return lines;
}

/// The digests are of what was read: a run may take the one file away and write over the other.
struct Digests {
    std::string file;
    std::string machine;

    Digests(const InputFile& input, const ConfigureOptions& options) {
        if (!options.reportFile.empty()) {
            file = report::Sha256(ReadWholeFile(input.Path()));
            machine = options.machine.file.empty()
                          ? ""
                          : report::Sha256(ReadWholeFile(options.machine.file));
        }
    }
};

void WriteFiles(const Outcome& outcome, const ConfigureOptions& options, Output& output) {
    if (!options.traceFile.empty()) {
        WriteTrace(outcome.trace, options.traceFile);
    }
    if (!options.saveFile.empty()) {
        const bool keep =
            options.withPasswords || (!options.machine.file.empty() &&
                                      util::IsSameFile(options.machine.file, options.saveFile));
        SaveMachine(outcome.machine, options.saveFile, keep);
        if (!keep && HasAccounts(outcome.machine)) {
            output.Note(options.saveFile +
                        " is without the passwords of the directory's accounts; "
                        "--with-passwords saves them too");
        }
    }
}

void PrintLog(const Outcome& outcome, Output& output) {
    for (const Pass& pass : outcome.passes) {
        for (const Mark& mark : pass.run.log) {
            output.Log(mark.line);
        }
    }
}

int Configure(const CommonOptions& common, const ConfigureOptions& options, Output& output) {
    CheckCombination(options);
    CheckFiles(common, options);
    const machine::FaultPlan faults = ParseFaults(options.faults);
    const InputFile input(options.file);
    if (options.machine.thisMachine && !options.plan && !input.IsFile()) {
        throw HostError("--this-machine needs a real file: the module moves it away", kWrongUsage);
    }
    const Request request{common.module,
                          input.Path(),
                          input.Name(),
                          options.untilDone,
                          faults,
                          [&output](const std::string& text) { output.Progress(text); },
                          0,
                          options.plan};
    const Digests digests(input, options);
    const bool here = options.machine.thisMachine && !options.plan;
    const bool undoes = !options.undoFile.empty();
    machine::State machine = here && !undoes ? machine::State() : options.machine.Read(output);
    if (options.afterRestart) {
        machine::ApplyRestart(machine);
    }
    std::optional<undo::Undo> undo;
    if (undoes) {
        undo = undo::MakeUndo(request, machine);
        WriteWholeFile(options.undoFile, undo->text);
    }
    Result result = here ? CheckAndRunHere(request) : CheckAndRun(request, machine);
    const Outcome& outcome = result.outcome;
    if (undo) {
        result.lockOuts = undo::ListLockOuts(outcome.passes.front().run.before, undo->foreseen);
    }
    output.Progress({});
    WriteFiles(outcome, options, output);
    const std::string machineName = options.machine.Name();
    output.Document() = ToJson(result, input.Name(), machineName);
    const ReportOptions told = {
        input.Name(),
        machineName,
        ShellWord(options.file),
        options.machine.Options(),
        options.machine.thisMachine,
        options.plan,
        options.untilDone,
        options.summary   ? Extent::kSummary
        : options.details ? Extent::kDetails
                          : Extent::kUsual,
        result.checked,
        Warnings(result.lockOuts, options),
        undo ? WayBack(*undo, options.undoFile) : std::vector<std::string>()};
    PrintReport(outcome, told, output);
    if (undo) {
        output.Document()["undo"] = {{"file", ToUtf8(options.undoFile)},
                                     {"byHand", ToJson(undo->byHand)}};
    }
    if (options.log) {
        PrintLog(outcome, output);
    }
    NoteIdleFaults(outcome, output);
    for (const std::string& violation : outcome.violations) {
        output.Error("the module broke a rule of the simulated machine: " + violation);
    }
    const int exitCode = ExitCodeOf(outcome, request);
    if (!options.reportFile.empty()) {
        WriteWholeFile(
            options.reportFile,
            report::MakePlanPage({outcome, told, exitCode, digests.file, digests.machine},
                                 Module(common.module).GetVersion().Text()));
    }
    return exitCode;
}

}  // namespace

void AddConfigureCommand(CLI::App& app, const CommonOptions& common, Action& action) {
    CLI::App* const command = app.add_subcommand(
        "configure", "Run a configuration file against a machine, simulated by default");
    const auto options = std::make_shared<ConfigureOptions>();
    AddFile(*command, "file", options->file, "The configuration file; - reads standard input")
        ->required();
    AddMachineOptions(*command, options->machine);
    command->add_flag("--yes", options->yes, "Confirm that the real machine may be changed");
    command->add_flag("--plan", options->plan,
                      "Change nothing; exit code 2 when there would be changes");
    command->add_flag("--until-done", options->untilDone,
                      "Restart the simulated machine and continue for as long as the module asks");
    command->add_flag("--after-restart", options->afterRestart,
                      "Restart the simulated machine first: an earlier run asked for it");
    command
        ->add_option("--fail", options->faults,
                     "Make calls fail: EnableStatic=84, RegOpenKeyExA#2=5, call:17, "
                     "Next[query~Caption] (repeatable)")
        ->type_name("SPEC")
        ->check(NotEmpty())
        ->allow_extra_args(false);
    AddFile(*command, "--trace", options->traceFile,
            "Write every platform call as JSON lines; as a timeline to *.trace.json");
    AddFile(*command, "--undo-file", options->undoFile,
            "Before anything changes, write a configuration file that undoes it");
    AddFile(*command, "--report", options->reportFile,
            "Write a page to attach to a change: one HTML file that stands by itself");
    CLI::Option* const save = AddFile(*command, "--save-machine", options->saveFile,
                                      "Write the machine as it is afterwards");
    command
        ->add_flag("--with-passwords", options->withPasswords,
                   "Save the passwords of the directory's accounts too")
        ->needs(save);
    command->add_flag("--log", options->log, "Print the module's log beside the report");
    CLI::Option* const summary = command->add_flag("--summary", options->summary,
                                                   "Print only the closing lines of the report");
    command
        ->add_flag("--details", options->details,
                   "Print every call and route, and what else changes on the machine")
        ->excludes(summary);
    command->callback([&common, &action, options] {
        action = [&common, options](Output& output) { return Configure(common, *options, output); };
    });
}

}  // namespace host::configure
