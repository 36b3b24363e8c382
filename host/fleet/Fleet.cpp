#include "host/fleet/Fleet.h"

#include "host/ExitCode.h"
#include "host/HostError.h"
#include "host/InputFile.h"
#include "host/configure/MachineFiles.h"

namespace host::fleet {

namespace {

configure::Result MakePlan(configure::Request request, const Member& member) {
    const machine::State machine = configure::LoadMachine(member.machine);
    if (!request.file.empty()) {
        return configure::CheckAndRun(request, machine);
    }
    const InputFile input(member.file);
    request.file = input.Path();
    request.name = input.Name();
    return configure::CheckAndRun(request, machine);
}

}  // namespace

Planned PlanFor(const Member& member, const Source& source, const configure::Watcher& watcher) {
    Planned planned{member, {}, member.fault, kBadInput};
    if (!member.fault.empty()) {
        return planned;
    }
    configure::Request request{source.module, source.file, source.fileName, false, {}, watcher};
    request.plan = true;
    try {
        planned.result = MakePlan(request, member);
        planned.exitCode = configure::ExitCodeOf(planned.result->outcome, request);
    } catch (const HostError& error) {
        planned.fault = error.what();
        planned.exitCode = error.Code();
    } catch (const std::exception& error) {
        planned.fault = error.what();
        planned.exitCode = kFailure;
    }
    return planned;
}

}  // namespace host::fleet
