#include "host/init/MachineInFile.h"

#include "host/Files.h"
#include "host/HostError.h"
#include "host/configure/Passes.h"
#include "host/configure/PrivateFolder.h"
#include "host/init/Description.h"
#include "host/init/Rendering.h"

namespace host::init {

namespace {

/// What the module would make of the text on the machine.
configure::Outcome Plan(const std::string& module, const std::string& text,
                        const machine::State& machine) {
    const configure::PrivateFolder folder;
    const std::string file = folder.Path() + "\\machine.ini";
    WriteWholeFile(file, text);
    return configure::RunPasses({module, file, file, false, {}, [](const std::string&) {}, 0},
                                machine);
}

/// Where the module cannot read the adapters, every section of one fails the request.
void SetSectionsAside(Description& description, const configure::Failure& failure) {
    if (!description.adapters.empty()) {
        description.adapters.front().obstacle =
            "the module cannot read the adapters, and every section fails (" + failure.text + ")";
    }
    description.saysRoutes = false;
}

}  // namespace

std::string DescribeInFile(const std::string& module, const machine::State& machine,
                           const std::string& name) {
    const Texts heading = {
        machine.computerName + " as it is (" + name + "): running this file there changes nothing.",
        "What each key does: docs/configuration-file.md."};
    Description description = Describe(machine, machine);
    std::string text = Render(description, heading);
    configure::Outcome outcome = Plan(module, text, machine);
    if (const auto& failure = outcome.Last().story.failure) {
        SetSectionsAside(description, *failure);
        text = Render(description, heading);
        outcome = Plan(module, text, machine);
    }
    if (outcome.Last().story.failure) {
        throw HostError("no file can describe " + name + ": on this machine the module fails (" +
                        outcome.Last().story.failure->text + ")");
    }
    if (configure::ChangesSomething(outcome)) {
        throw HostError("no file can describe " + name + " without changing it");
    }
    return text;
}

}  // namespace host::init
