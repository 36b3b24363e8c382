#include "host/init/MachineInFile.h"

#include "host/HostError.h"
#include "host/init/Draft.h"

namespace host::init {

std::string DescribeInFile(const std::string& module, const machine::State& machine,
                           const std::string& name) {
    const Texts heading = {
        machine.computerName + " as it is (" + name + "): running this file there changes nothing.",
        "What each key does: docs/configuration-file.md."};
    const Draft draft = Try(module, Describe(machine, machine), heading, machine, false);
    if (const auto& failure = draft.outcome.Last().story.failure) {
        throw HostError("no file can describe " + name + ": on this machine the module fails (" +
                        failure->text + ")");
    }
    if (configure::ChangesSomething(draft.outcome)) {
        throw HostError("no file can describe " + name + " without changing it");
    }
    return draft.text;
}

}  // namespace host::init
