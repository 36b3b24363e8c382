#include "host/configure/RunOnce.h"

#include <windows.h>

#include <algorithm>
#include <utility>

#include "host/HostError.h"
#include "host/Module.h"
#include "host/Text.h"
#include "host/configure/Announcement.h"
#include "host/configure/PrivateFolder.h"
#include "host/configure/Values.h"
#include "host/configure/Violations.h"
#include "host/snapshot/Snapshot.h"

namespace host::configure {

namespace {

/// Serves the module's platform calls while it lives.
class Attachment {
public:
    Attachment(machine::Simulation& simulation, const Module& module)
        : simulation_(simulation), image_(static_cast<HMODULE>(module.Handle())) {
        simulation_.Attach(image_);
    }
    ~Attachment() { simulation_.Detach(image_); }
    Attachment(const Attachment&) = delete;
    Attachment& operator=(const Attachment&) = delete;

private:
    machine::Simulation& simulation_;
    HMODULE image_;
};

void ReplaceAll(std::string& text, const std::string& from, const std::string& to) {
    for (std::size_t at = text.find(from); at != std::string::npos;
         at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
}

/// A call that the simulation does not serve would reach this machine.
void RefuseUnserved(const machine::Simulation& simulation) {
    if (!simulation.UnservedImports().empty()) {
        throw HostError("the module imports " + simulation.UnservedImports().front() +
                        ", which the simulated machine does not serve");
    }
}

/// A module that cannot learn where its program stands puts the copy away somewhere else: it goes
/// from there.
void RemoveStrayCopy(const std::vector<machine::TraceEntry>& calls, const std::string& copy,
                     const std::string& folder) {
    for (const machine::TraceEntry& call : calls) {
        if (call.function != "MoveFileA" || call.failed || call.arguments.size() != 2 ||
            call.arguments[0].second != copy) {
            continue;
        }
        const std::string& destination = call.arguments[1].second;
        if (!destination.starts_with(folder + "\\")) {
            DeleteFileA(destination.c_str());
        }
    }
}

void Send(const Module& module, const std::string& file, LogSink& log, Run& run) {
    Message message("Internal", "Configure");
    message.Add("Filename", file);
    try {
        run.result = module.Send(message, log);
    } catch (const HostError& error) {
        run.moduleError = error.what();
    }
    run.reply = message.Reply();
}

}  // namespace

std::string Run::Reply(const std::string& name) const {
    for (const Field& field : reply) {
        if (field.name == name) {
            return field.Text();
        }
    }
    return {};
}

Run RunOnSimulation(const std::string& modulePath, machine::Simulation& simulation,
                    const std::string& file, const std::string& name, std::size_t routes,
                    const Watcher& watcher) {
    const PrivateFolder folder;
    const std::string copy = folder.CopyOf(file);
    const std::string agent = folder.Path() + "\\agent";
    CreateDirectoryA(agent.c_str(), nullptr);
    simulation.SetProgramFile(agent + "\\agent.exe");

    Run run;
    run.before = simulation.GetState();
    const std::size_t callsBefore = simulation.GetTrace().Size();
    const std::size_t unexpectedBefore = simulation.Unexpected().size();
    std::optional<std::uint32_t> adapter;
    LogSink log([&](LogLine line) {
        ReplaceAll(line.text, copy, name);
        HideAccount(line.text);
        watcher(line.text);
        Mark mark{std::move(line), simulation.GetTrace().Size() - callsBefore, std::nullopt};
        if (const auto index = ReadAdapterIndex(mark.line)) {
            adapter = index;
        } else if (const auto announcement = ReadAnnouncement(mark.line)) {
            const auto kind = KindOf(announcement->command);
            mark.present =
                kind ? CurrentValues(simulation.GetState(), *kind, adapter) : std::nullopt;
        }
        run.log.push_back(std::move(mark));
    });
    std::size_t route = 0;
    simulation.WatchRoutes([&] {
        ++route;
        watcher("route " + Grouped(route) + " of " + Grouped(std::max(route, routes)));
    });
    const Module module(modulePath);
    {
        const Attachment attachment(simulation, module);
        RefuseUnserved(simulation);
        Send(module, copy, log, run);
    }
    simulation.WatchRoutes({});
    simulation.Settle();
    run.after = simulation.GetState();
    const auto& calls = simulation.GetTrace().Entries();
    run.calls.assign(calls.begin() + static_cast<std::ptrdiff_t>(callsBefore), calls.end());
    RemoveStrayCopy(run.calls, copy, folder.Path());
    run.violations = TakeViolations(simulation, run.calls, unexpectedBefore);
    ReplaceAll(run.moduleError, copy, name);
    return run;
}

Run RunOnThisMachine(const std::string& modulePath, const std::string& file,
                     const Watcher& watcher) {
    Run run;
    run.before = snapshot::TakeSnapshot().state;
    const Module module(modulePath);
    LogSink log([&](LogLine line) {
        HideAccount(line.text);
        watcher(line.text);
        run.log.push_back({std::move(line), 0, std::nullopt});
    });
    Send(module, file, log, run);
    run.after = snapshot::TakeSnapshot().state;
    return run;
}

}  // namespace host::configure
