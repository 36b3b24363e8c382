#include "host/snapshot/SnapshotCommand.h"

#include <memory>
#include <string>

#include "host/ExitCode.h"
#include "host/Files.h"
#include "host/Text.h"
#include "host/snapshot/Snapshot.h"
#include "machine/MachineFile.h"

namespace host::snapshot {

namespace {

int Take(const std::string& file, Output& output) {
    const Snapshot snapshot = TakeSnapshot();
    for (const std::string& note : snapshot.notes) {
        output.Note(note);
    }
    output.Note(
        "Not seen: directories with their accounts, units and owners (add them to plan a join), a "
        "name or a membership that waits for a restart, the names of connections and of hosts, "
        "what a DHCP server gives to an adapter that does not ask it, whether the Workstation "
        "service runs, COM security is set and this program is elevated, and how this version of "
        "Windows differs.");
    if (file.empty()) {
        output.Raw(machine::FormatState(snapshot.state));
        return kDone;
    }
    WriteWholeFile(file, machine::FormatState(snapshot.state));
    output.Line("wrote " + file);
    output.Document()["file"] = ToUtf8(file);
    return kDone;
}

}  // namespace

void AddSnapshotCommand(CLI::App& app, Action& action) {
    CLI::App* const command = app.add_subcommand(
        "snapshot", "Write the machine that this program runs on as a machine file");
    const auto file = std::make_shared<std::string>();
    AddFile(*command, "--output,-o", *file, "Where to write it; default: standard output");
    command->callback(
        [&action, file] { action = [file](Output& output) { return Take(*file, output); }; });
}

}  // namespace host::snapshot
