#include "host/check/CheckCommand.h"

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "host/ExitCode.h"
#include "host/Files.h"
#include "host/InputFile.h"
#include "host/Text.h"
#include "host/check/FileCheck.h"
#include "host/check/FindingText.h"
#include "host/check/MachineCheck.h"
#include "host/configure/MachineFiles.h"
#include "host/reading/Secrets.h"

namespace host::check {

namespace {

using Json = nlohmann::ordered_json;

struct CheckArguments {
    std::string file;
    std::string machineFile;
    bool strict = false;
};

std::string Counted(std::size_t count, const std::string& noun) {
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

int Check(const CheckArguments& arguments, Output& output) {
    const InputFile input(arguments.file);
    CheckedFile checked = CheckFile(input.Path());
    const std::string& file = input.Name();
    if (!arguments.machineFile.empty()) {
        CheckOnMachine(checked.file, configure::LoadMachine(arguments.machineFile),
                       checked.findings);
    }
    const Findings& findings = checked.findings;
    output.Document() = {{"file", ToUtf8(file)},
                         {"errors", findings.Errors()},
                         {"warnings", findings.Warnings()},
                         {"findings", Json::array()}};
    std::size_t number = 0;
    std::string line;  // a line may be long and have many findings
    for (const Finding& finding : findings.List()) {
        if (finding.place.line != 0 &&
            finding.place.line != std::exchange(number, finding.place.line)) {
            line = reading::ShownLine(checked.file, number);
        }
        PrintFinding(file, finding, line, output);
        output.Document()["findings"].push_back(ToJson(finding, line));
    }
    const std::size_t all = findings.Errors() + findings.Warnings();
    if (all > findings.List().size()) {
        output.Line("... and " + std::to_string(all - findings.List().size()) + " more");
    }
    output.Line(all == 0 ? file + ": no faults"
                         : file + ": " + Counted(findings.Errors(), "error") + ", " +
                               Counted(findings.Warnings(), "warning"),
                all == 0 ? Tone::kGood : Tone::kPlain);
    const bool refused = findings.Errors() > 0 || (arguments.strict && all > 0);
    output.Document()["accepted"] = !refused;
    return refused ? kBadInput : kDone;
}

}  // namespace

void AddCheckCommand(CLI::App& app, Action& action) {
    CLI::App* const check =
        app.add_subcommand("check", "Find every fault of a configuration file, without running it");
    const auto arguments = std::make_shared<CheckArguments>();
    check->add_option("file", arguments->file, "The configuration file; - reads standard input")
        ->required()
        ->type_name("FILE")
        ->check(NotEmpty());
    check
        ->add_option("--machine", arguments->machineFile,
                     "A machine file: warn of what that machine makes of the file too")
        ->type_name("FILE")
        ->check(NotEmpty());
    check->add_flag("--strict", arguments->strict, "Take warnings for errors");
    check->callback([&action, arguments] {
        action = [arguments](Output& output) { return Check(*arguments, output); };
    });
}

}  // namespace host::check
