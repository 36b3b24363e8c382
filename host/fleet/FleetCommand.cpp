#include "host/fleet/FleetCommand.h"

#include <chrono>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "host/Files.h"
#include "host/InputFile.h"
#include "host/Module.h"
#include "host/Text.h"
#include "host/configure/Json.h"
#include "host/fleet/Fleet.h"
#include "host/fleet/FleetReport.h"
#include "host/fleet/Folder.h"
#include "host/fleet/Recap.h"

namespace host::fleet {

namespace {

struct FleetOptions {
    std::string folder;
    std::string file;
    std::string reportFile;
    bool summary = false;
};

/// "12 of 1,000 desk-12: route 5 of 10". What a plan tells of itself comes far more often than
/// anybody can read it.
class Progress {
public:
    Progress(std::size_t all, Output& output) : all_(Grouped(all)), output_(output) {}

    void Begin(const std::string& name) {
        where_ = Grouped(++count_) + " of " + all_ + " " + name;
        Show(where_);
    }
    void Tell(const std::string& text) { Show(where_ + ": " + text); }

private:
    using Clock = std::chrono::steady_clock;
    static constexpr auto kPause = std::chrono::milliseconds(100);

    void Show(const std::string& text) {
        const Clock::time_point now = Clock::now();
        if (now - shown_ >= kPause) {
            shown_ = now;
            output_.Progress(text);
        }
    }

    std::string all_;
    Output& output_;
    std::size_t count_ = 0;
    std::string where_;
    Clock::time_point shown_;
};

/// The object of "configure" with more: docs/fleet.schema.json describes it.
nlohmann::ordered_json ToJson(const Planned& planned, const std::string& fileName) {
    nlohmann::ordered_json json = {{"name", ToUtf8(planned.member.name)},
                                   {"exitCode", planned.exitCode}};
    if (planned.result) {
        json.update(configure::ToJson(*planned.result, fileName, planned.member.machine));
    } else {
        json["error"] = ToUtf8(planned.fault);
    }
    return json;
}

/// The report must not end where a plan reads.
void CheckReportFile(const CommonOptions& common, const FleetOptions& options,
                     const std::vector<Member>& members) {
    const NamedFile page{"--report", options.reportFile};
    RefuseToOverwrite(page,
                      {{"the configuration file", options.file}, {"the module", common.module}});
    for (const Member& member : members) {
        RefuseToOverwrite(
            page, {{"a configuration file", member.file}, {"a machine file", member.machine}});
    }
}

int PlanFleet(const CommonOptions& common, const FleetOptions& options, Output& output) {
    output.BeginLines();
    std::optional<InputFile> site;
    Source source{common.module, {}, {}};
    if (!options.file.empty()) {
        site.emplace(options.file);
        source.file = site->Path();
        source.fileName = site->Name();
    }
    const std::vector<Member> members =
        site ? ListMachines(options.folder, options.file) : ListPairs(options.folder);
    CheckReportFile(common, options, members);
    // A module that cannot be loaded is not each machine's fault.
    const std::string version = Module(common.module).GetVersion().Text();
    Progress progress(members.size(), output);
    Recap recap;
    FleetReport report;
    for (const Member& member : members) {
        progress.Begin(member.name);
        const Planned planned =
            PlanFor(member, source, [&progress](const std::string& text) { progress.Tell(text); });
        recap.Add(planned);
        const std::string& fileName = site ? site->Name() : member.file;
        if (!options.reportFile.empty()) {
            report.Add(planned, recap.Rows().back(), site ? site->Path() : member.file, fileName);
        }
        if (output.IsJson() && !output.PrintJson(ToJson(planned, fileName))) {
            break;
        }
    }
    recap.Print(options.folder, options.summary, output);
    if (!options.reportFile.empty()) {
        WriteWholeFile(options.reportFile, report.MakePage(recap, options.folder, version));
    }
    return recap.ExitCode();
}

}  // namespace

void AddFleetCommand(CLI::App& app, const CommonOptions& common, Action& action) {
    CLI::App* const command =
        app.add_subcommand("fleet", "Plan many machines, each a pair of files in a folder");
    const auto options = std::make_shared<FleetOptions>();
    AddFile(*command, "folder", options->folder,
            "The folder with NAME.ini and NAME.json for each machine")
        ->required()
        ->type_name("FOLDER");
    AddFile(*command, "--file", options->file,
            "One configuration file for every machine file of the folder; - reads standard input");
    AddFile(*command, "--report", options->reportFile,
            "Write a page with a line for each machine that opens to its plan");
    command->add_flag("--summary", options->summary, "Print the totals only");
    command->callback([&common, &action, options] {
        action = [&common, options](Output& output) { return PlanFleet(common, *options, output); };
    });
}

}  // namespace host::fleet
