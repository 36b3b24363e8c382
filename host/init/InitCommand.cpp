#include "host/init/InitCommand.h"

#include <memory>
#include <string>

#include "host/ExitCode.h"
#include "host/Files.h"
#include "host/Text.h"
#include "host/configure/MachineFiles.h"
#include "host/init/MachineInFile.h"

namespace host::init {

namespace {

struct InitOptions {
    configure::MachineChoice machine;
    std::string file;
};

int Init(const CommonOptions& common, const InitOptions& options, Output& output) {
    RefuseToOverwrite({"--output", options.file},
                      {{"the machine file", options.machine.file}, {"the module", common.module}});
    const std::string text =
        DescribeInFile(common.module, options.machine.Read(output), options.machine.Name());
    if (options.file.empty()) {
        output.File(text);
        return kDone;
    }
    WriteWholeFile(options.file, text);
    output.Line("wrote " + options.file);
    output.Document()["file"] = ToUtf8(options.file);
    return kDone;
}

}  // namespace

void AddInitCommand(CLI::App& app, const CommonOptions& common, Action& action) {
    CLI::App* const command = app.add_subcommand(
        "init", "Write the configuration file that describes a machine as it is");
    const auto options = std::make_shared<InitOptions>();
    configure::AddMachineOptions(*command, options->machine);
    AddFile(*command, "--output,-o", options->file, "Where to write it; default: standard output");
    command->callback([&common, &action, options] {
        action = [&common, options](Output& output) { return Init(common, *options, output); };
    });
}

}  // namespace host::init
