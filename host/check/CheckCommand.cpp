#include "host/check/CheckCommand.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/ExitCode.h"
#include "host/Files.h"
#include "host/HostError.h"
#include "host/InputFile.h"
#include "host/Text.h"
#include "host/check/FileCheck.h"
#include "host/check/FindingText.h"
#include "host/check/MachineCheck.h"
#include "host/check/Sarif.h"
#include "host/configure/MachineFiles.h"
#include "host/reading/Secrets.h"

namespace host::check {

namespace {

using Json = nlohmann::ordered_json;

struct CheckArguments {
    std::vector<std::string> files;
    std::string machineFile;
    bool strict = false;
};

/// Prints the findings; returns them for programs.
Json Show(const std::string& file, const CheckedFile& checked, Output& output) {
    const Findings& findings = checked.findings;
    Json document = {{"file", ToUtf8(file)},
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
        document["findings"].push_back(ToJson(finding, line));
    }
    const std::size_t all = findings.Errors() + findings.Warnings();
    if (all > findings.List().size()) {
        output.Line("... and " + std::to_string(all - findings.List().size()) + " more");
    }
    return document;
}

/// Checks the files of one call, one after the other.
class Checking {
public:
    Checking(const CheckArguments& arguments, Output& output)
        : arguments_(arguments), output_(output) {}

    int Run() {
        if (std::ranges::count(arguments_.files, "-") > 1) {
            throw HostError("standard input can be read once only", kWrongUsage);
        }
        if (!arguments_.machineFile.empty()) {
            machine_ = configure::LoadMachine(arguments_.machineFile);
        }
        if (arguments_.files.size() == 1) {
            output_.Document() = CheckOne(arguments_.files.front());
        } else {
            CheckEach();
        }
        return verdict_;
    }

    SarifLog& Sarif() noexcept { return sarif_; }

private:
    Json CheckOne(const std::string& named);
    void CheckEach();
    bool Judge(const std::string& what, std::size_t errors, std::size_t warnings);

    const CheckArguments& arguments_;
    Output& output_;
    std::optional<machine::State> machine_;
    SarifLog sarif_;
    int verdict_ = kDone;  // the worst of them
};

/// The line that ends a file, or all of them. Returns whether that is accepted.
bool Checking::Judge(const std::string& what, std::size_t errors, std::size_t warnings) {
    const bool isGood = errors + warnings == 0;
    output_.Line(isGood
                     ? what + ": no faults"
                     : what + ": " + Counted(errors, "error") + ", " + Counted(warnings, "warning"),
                 isGood ? Tone::kGood : Tone::kPlain);
    return errors == 0 && (isGood || !arguments_.strict);
}

Json Checking::CheckOne(const std::string& named) {
    const InputFile input(named);
    CheckedFile checked = CheckFile(input.Path());
    if (machine_) {
        CheckOnMachine(checked.file, *machine_, checked.findings);
    }
    if (output_.IsSarif()) {
        sarif_.Add(input.Name(), input.IsFile() ? input.Path() : "", checked);
    }
    Json document = Show(input.Name(), checked, output_);
    const bool accepted =
        Judge(input.Name(), checked.findings.Errors(), checked.findings.Warnings());
    document["accepted"] = accepted;
    verdict_ = std::max<int>(verdict_, accepted ? kDone : kBadInput);
    return document;
}

/// One that cannot be read does not keep the others from being checked.
void Checking::CheckEach() {
    Json files = Json::array();
    std::size_t errors = 0;
    std::size_t warnings = 0;
    std::size_t unread = 0;
    for (const std::string& named : arguments_.files) {
        try {
            const Json& document = files.emplace_back(CheckOne(named));
            errors += document["errors"].get<std::size_t>();
            warnings += document["warnings"].get<std::size_t>();
        } catch (const HostError& error) {
            output_.Error(error.what());
            sarif_.AddFailure(error.what());
            files.push_back(
                {{"file", ToUtf8(named)}, {"error", ToUtf8(error.what())}, {"accepted", false}});
            verdict_ = std::max<int>(verdict_, error.Code());
            ++unread;
        }
    }
    const std::string total = std::to_string(arguments_.files.size()) + " files";
    Judge(unread == 0 ? total : total + ", " + std::to_string(unread) + " of them not read", errors,
          warnings);
    output_.Document() = {{"files", std::move(files)},
                          {"errors", errors},
                          {"warnings", warnings},
                          {"accepted", verdict_ == kDone}};
}

int Check(const CheckArguments& arguments, Output& output) {
    Checking checking(arguments, output);
    if (!output.IsSarif()) {
        return checking.Run();
    }
    int exitCode = kDone;
    try {
        exitCode = checking.Run();
    } catch (const HostError& error) {
        output.Error(error.what());
        checking.Sarif().AddFailure(error.what());
        exitCode = error.Code();
    }
    output.Document() = checking.Sarif().Finish(exitCode);
    return exitCode;
}

}  // namespace

void AddCheckCommand(CLI::App& app, Action& action) {
    CLI::App* const check = app.add_subcommand(
        "check", "Find every fault of configuration files, without running them");
    const auto arguments = std::make_shared<CheckArguments>();
    check->add_option("file", arguments->files, "The configuration files; - reads standard input")
        ->required()
        ->type_name("FILE")
        ->check(NotEmpty());
    AddFile(*check, "--machine", arguments->machineFile,
            "A machine file: warn of problems on that machine too");
    check->add_flag("--strict", arguments->strict, "Treat warnings as errors");
    check->callback([&action, arguments] {
        action = [arguments](Output& output) { return Check(*arguments, output); };
    });
}

}  // namespace host::check
