// Random configurations on random machines, presented again and again with a restart between. What
// "check" finds no error in runs without one and comes to an end: requests that change nothing.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "host/Module.h"
#include "host/check/FileCheck.h"
#include "host/check/MachineCheck.h"
#include "host/init/MachineInFile.h"
#include "host/undo/Undo.h"
#include "machine/Actions.h"
#include "machine/MachineFile.h"
#include "machine/model/RegistryView.h"
#include "machine/model/Routes.h"
#include "tests/host/check/RandomFile.h"
#include "tests/requests/cases/CaseFile.h"
#include "tests/requests/sweep/Subject.h"
#include "tests/requests/sweep/Summary.h"
#include "tests/support/Sample.h"
#include "tests/support/ScratchFolder.h"

namespace sweep {
namespace {

constexpr int kMostRequests = 8;
/// So many draws reach every kind of change.
constexpr std::uint64_t kEnough = 40;

/// Makes of a plain adapter one of a laptop, of a guest or of a server, now and then.
void Disturb(machine::Adapter& adapter, check_tests::RandomFile& random) {
    switch (random.Below(40)) {
        case 0:
            adapter.condition = machine::Condition::kUnplugged;
            break;
        case 1:
            adapter.condition = machine::Condition::kInTeam;
            break;
        case 2:
            adapter.pnpDeviceId = "VMBUS\\{F8615163}\\" + std::to_string(adapter.index);
            break;
        case 3:
            adapter.ipAddress->push_back("2001:db8::1");
            adapter.ipSubnet->push_back("64");
            break;
        case 4:
            adapter.gateways->push_back(random.Below(2) == 0 ? "fe80::1" : "2620:9b::1");
            break;
        case 5:
            adapter.dhcpLease.reset();
            break;
        default:
            break;
    }
}

/// Inside or outside a domain; mostly with PCI adapters enough for every section; some that lack
/// what a file may need, or restart for what others do at once.
machine::State PlainMachine(check_tests::RandomFile& random) {
    machine::State state = cases::LoadBaseMachine(random.Below(3) == 0 ? "member" : "workgroup");
    const int adapters = random.Below(10) == 0 ? random.Below(3) : 3 + random.Below(4);
    const std::vector<machine::Adapter> kinds = state.adapters;
    state.adapters = {kinds[2]};
    for (int i = 0; i < adapters; ++i) {
        machine::Adapter adapter = kinds[static_cast<std::size_t>(random.Below(2))];
        adapter.index = static_cast<std::uint32_t>(20 + i);
        adapter.settingId = "{6C7F1A52-90B4-4C1E-9D57-0A1B2C3D4E" + std::to_string(20 + i) + "}";
        adapter.pnpDeviceId = "PCI\\VEN_8086&DEV_100E\\" + std::to_string(20 + i);
        state.adapters.push_back(adapter);
    }
    state.routes.clear();
    for (const char* const destination : {"10.9.0.0", "10.77.0.0", "10.78.0.0"}) {
        if (random.Below(2) == 0) {
            state.routes.push_back({destination, "255.255.0.0", "10.0.0.9", 1 + random.Below(5)});
        }
    }
    state.system.adapterChangesNeedRestart = random.Below(5) == 0;
    state.system.comSecuritySet = random.Below(5) == 0;
    state.domains[0].reachable = random.Below(10) != 0;
    if (random.Below(10) == 0) {
        state.system.libCrypto = machine::CryptoLibrary::kAbsent;
    }
    machine::model::PersistGateways(state);
    return state;
}

/// The same of shapes that are met, on some version of Windows.
machine::State RandomMachine(check_tests::RandomFile& random) {
    machine::State state = PlainMachine(random);
    for (std::size_t i = 1; i < state.adapters.size(); ++i) {
        Disturb(state.adapters[i], random);
    }
    if (random.Below(10) == 0) {
        state.domains[0].computers.push_back(state.computerName);
        state.domains[0].owners = {{state.computerName, "provisioner"}};
    }
    if (random.Below(20) == 0) {
        state.registry = {{machine::model::kDnsPolicyKey,
                           {machine::RegistryValue::Text("SearchList", "policy.example")}}};
    }
    machine::Versions& versions = state.system.versions;
    versions.staticOnStatic = random.Below(6) == 0 ? 81 : 0;
    versions.refusedRoute = random.Below(6) == 0 ? 1 : 0;
    versions.leaseTakes = random.Below(2) == 0 ? 0 : versions.leaseTakes;
    machine::model::PersistGateways(state);
    return state;
}

/// Whether the request did something that took effect. A pause does nothing, and what the machine
/// refuses may be tried for ever. 1 means a restart for a method and a refusal for route.
bool HadEffect(const requests::RunResult& run) {
    const std::vector<std::string> actions = machine::ListActions(run.calls);
    return std::ranges::any_of(actions, [](const std::string& action) {
        return action.ends_with("-> 0") ||
               (action.ends_with("-> 1") && !action.starts_with("route ")) ||
               (action.starts_with("move ") && action.ends_with("-> S_OK"));
    });
}

/// What "check" says of a file on that machine, and what it cannot: the machine's domain may
/// refuse.
struct Forecast {
    bool hasErrors = false;
    bool maySwing = false;  // what one request sets, it or the next undoes
    bool mayFail = false;
    bool needsADomain = false;
};

Forecast Foresee(const Subject& subject, const std::string& file) {
    constexpr host::check::Code kSwinging[] = {
        "suffix-conflict", "default-routes", "default-routes-next-time", "refused-route",
        "policy-suffixes", "ipv6-gateway",   "shared-destination"};
    constexpr host::check::Code kFailing[] = {
        "no-pci-adapter", "too-few-adapters",         "ipv6-gateway",
        "ipv6-address",   "static-on-static",         "refused-route",
        "default-routes", "default-routes-next-time", "shared-destination"};
    host::check::CheckedFile checked = host::check::CheckFile(file);
    host::check::CheckOnMachine(checked.file, subject.machine, checked.findings);
    Forecast forecast;
    forecast.hasErrors = checked.findings.Errors() > 0;
    for (const host::check::Finding& finding : checked.findings.List()) {
        forecast.maySwing |= std::ranges::find(kSwinging, finding.code) != std::end(kSwinging);
        forecast.mayFail |= std::ranges::find(kFailing, finding.code) != std::end(kFailing);
    }
    forecast.needsADomain = subject.machine.membership.member ||
                            subject.text.find("Workgroup=False") != std::string::npos ||
                            subject.text.find("DomainUsername") != std::string::npos;
    return forecast;
}

struct Course {
    bool settled = false;
    std::string caught;  // the lines with which the module says that it has caught an error
};

/// Counts what a request did and how it failed.
void Count(const requests::RunResult& run, Figures& figures) {
    const std::pair<const char*, const char*> kinds[] = {{"JoinDomainOrWorkgroup on ", "joins"},
                                                         {"UnjoinDomainOrWorkgroup on ", "leaves"},
                                                         {"Rename on ", "renames"},
                                                         {"move ", "moves"},
                                                         {"route ", "routes"},
                                                         {"EnableStatic on ", "static addresses"}};
    for (const std::string& action : machine::ListActions(run.calls)) {
        for (const auto& [start, name] : kinds) {
            figures[name] += action.starts_with(start) &&
                             (action.ends_with("-> 0") || action.ends_with("-> S_OK"));
        }
    }
    const auto result = run.reply.find("Result");
    if (result != run.reply.end() && result->second == "Reboot") {
        ++figures["restarts"];
    } else if (result != run.reply.end() && result->second == "Failure" && !run.errors.empty()) {
        const std::string& error = run.errors.back();
        const std::size_t end = error.find(' ');
        ++figures["failures in " +
                  error.substr(error.rfind('\\', end) + 1, end - error.rfind('\\', end) - 1)];
    }
}

void Check(const requests::RunResult& run, const Subject& subject, Trial& trial) {
    EXPECT_EQ(run.escaped, "");
    EXPECT_EQ(run.result, 1);
    EXPECT_EQ(run.unexpected, std::vector<std::string>());
    EXPECT_EQ(run.comBlocks, 0U);
    EXPECT_EQ(trial.MemoryLeaks(), std::vector<std::string>());
    EXPECT_EQ(trial.TakeLeaks(), std::vector<std::string>());
    EXPECT_EQ(requests::FindSecret(run, subject.machine), "");
    const bool isReboot = run.reply == std::map<std::string, std::string>{{"Result", "Reboot"}};
    EXPECT_EQ(trial.File().WhereIsIt(), isReboot ? "kept" : "put away");
}

/// `left` is the machine afterwards.
Course Follow(const Subject& subject, machine::State& left, Figures& figures) {
    Trial trial(subject);
    Course course;
    int quiet = 0;
    for (int request = 0; request < kMostRequests && quiet < 2; ++request) {
        const machine::State before = trial.Machine().GetState();
        const requests::RunResult run = trial.Run();
        Check(run, subject, trial);
        Count(run, figures);
        for (const std::string& line : run.log) {
            course.caught += line.find("caught") == std::string::npos ? "" : line + "\n";
        }
        const bool changed = HadEffect(run) || trial.Machine().GetState() != before;
        EXPECT_FALSE(changed && quiet > 0) << "a request changes something after one that did not";
        quiet = changed ? 0 : quiet + 1;
        trial.Machine().Restart();
    }
    course.settled = quiet == 2;
    left = trial.Machine().GetState();
    return course;
}

machine::State Restarted(machine::State machine) {
    machine::ApplyRestart(machine);
    return machine;
}

/// What leads back, made before the run, brings back everything but what it names.
void LeadBack(const host::undo::Undo& undo, const machine::State& before,
              const machine::State& settled, Figures& figures) {
    const support::ScratchFolder files;
    const std::string file = files.Write("back.ini", undo.text);
    EXPECT_EQ(host::check::CheckFile(file).findings.Errors(), 0U);
    const Subject subject{"undone", undo.text, std::nullopt, settled};
    if (Foresee(subject, file).maySwing) {
        return;  // what its one run loses, by a default route, its next one brings back
    }
    Figures unused;
    machine::State back;
    const Course course = Follow(subject, back, unused);
    EXPECT_EQ(course.caught, "");
    EXPECT_TRUE(course.settled);
    const machine::State wanted = Restarted(before);
    EXPECT_EQ(host::undo::ListLeft(back, wanted), undo.byHand);
    for (const std::string& line : undo.byHand) {
        EXPECT_NE(undo.text.find("; " + line.substr(0, 60)), std::string::npos) << line;
    }
    ++figures["undone"];
    figures["undone without a hand"] += settled != wanted && undo.byHand.empty();
}

TEST(Settling, RandomConfigurationsOnRandomMachines) {
    const std::uint64_t pairs = support::SampleOf(50, 400, 400);
    check_tests::RandomFile random(1, 40);
    Figures& figures = FiguresOf("random configurations on random machines");
    const std::uint64_t ledBack = support::SampleOf(50, 200, 400);
    const support::ScratchFolder files;
    for (std::uint64_t pair = 0; pair < pairs && !HasFailure(); ++pair) {
        NotePoint("pair " + std::to_string(pair));
        const Subject subject{"random", random.Make(), std::nullopt, RandomMachine(random)};
        const std::string file = files.Write("random.ini", subject.text);
        const Forecast forecast = Foresee(subject, file);
        const host::undo::Undo undo = host::undo::MakeUndo(
            {host::Module::DefaultPath(), file, file, false, {}, {}, 0}, subject.machine);
        machine::State left;
        const Course course = Follow(subject, left, figures);
        // What leads back does so from the machine that the file's last restart leaves. A file that
        // is quiet about restarts is put away before; one that changes more when it is sent again,
        // as here, goes on from there.
        if (course.settled && course.caught.empty() && pair < ledBack && undo.foreseen == left) {
            LeadBack(undo, subject.machine, left, figures);
        }
        ++figures["pairs"];
        figures["without an error in the file"] += forecast.hasErrors ? 0 : 1;
        figures["that never settle"] += course.settled ? 0 : 1;
        if (!forecast.hasErrors) {
            figures["without one in the run either"] += course.caught.empty() ? 1 : 0;
            EXPECT_TRUE(course.settled || forecast.maySwing);
            EXPECT_TRUE(course.caught.empty() || forecast.needsADomain || forecast.mayFail)
                << course.caught;
        }
        if (HasFailure()) {
            std::printf("%s\n%s\n%s\n", subject.text.c_str(), undo.text.c_str(),
                        machine::FormatState(subject.machine).c_str());
        }
    }
    if (pairs < kEnough) {
        return;
    }
    EXPECT_GE(3 * figures["without an error in the file"], 2 * pairs);
    EXPECT_GE(3 * figures["undone"], ledBack);
    for (const char* const reached : {"joins", "leaves", "renames", "moves", "routes",
                                      "static addresses", "restarts", "undone without a hand"}) {
        EXPECT_GT(figures[reached], 0U) << reached;
    }
}

/// What a file can say only in part, or not at all.
void AddOddities(machine::State& state, check_tests::RandomFile& random) {
    const auto now = [&random] { return random.Below(8) == 0; };
    for (machine::Adapter& adapter : state.adapters) {
        adapter.ipEnabled = !now();
        if (now()) {
            adapter.gateways.reset();
        }
        if (now()) {
            adapter.dnsServers = adapter.staticDns = {"10.0.0.3", "10.0.0.4"};
        }
        if (now()) {
            adapter.dnsServers.reset();
            adapter.staticDns.clear();
        }
        if (now()) {
            adapter.ipAddress->push_back("fe80::7");
            adapter.ipSubnet->push_back("64");
        }
        if (now() && now()) {
            (now() ? adapter.ipAddress : adapter.gateways) =
                machine::TextList{random.Below(2) == 0 ? "fe80::1" : "2620:9b::1"};
        }
        // Long enough for a comment of two lines.
        adapter.connectionName =
            now() ? "LAN\r\nDHCP=true " + std::string(100, 'n') : std::string(" LAN");
    }
    if (now()) {
        state.dnsSuffixes =
            random.Below(2) == 0 ? machine::TextList{} : machine::TextList{"a.example", "b,c "};
    }
    for (int defaults = random.Below(3); defaults > 0; --defaults) {
        state.routes.push_back({"0.0.0.0", "0.0.0.0", "10.0.0." + std::to_string(defaults), 3});
    }
    if (now()) {
        state.membership = machine::Membership::OfWorkgroup(now() ? " SALES" : "");
    }
    if (now()) {
        state.pendingComputerName = "PC-NEXT";
    }
}

TEST(Describing, WhatDescribesARandomMachineChangesNothingOnIt) {
    const std::uint64_t machines = support::SampleOf(40, 200, 400);
    check_tests::RandomFile random(30'000, 40);
    Figures& figures = FiguresOf("files that describe random machines");
    for (std::uint64_t i = 0; i < machines && !HasFailure(); ++i) {
        NotePoint("machine " + std::to_string(i));
        machine::State machine = RandomMachine(random);
        AddOddities(machine, random);
        const std::string text =
            host::init::DescribeInFile(host::Module::DefaultPath(), machine, "it");
        const Subject subject{"described", text, std::nullopt, machine};
        Trial trial(subject);
        EXPECT_FALSE(Foresee(subject, trial.File().Present()).hasErrors);
        const requests::RunResult run = trial.Run();
        EXPECT_EQ(run.reply.at("Result"), "Success");
        EXPECT_FALSE(HadEffect(run));
        EXPECT_EQ(trial.Machine().GetState(), machine);
        ++figures["machines"];
        figures["with sections"] += text.find("\nDescription=") != std::string::npos;
        figures["with sections aside"] += text.find("\n; Description=") != std::string::npos;
        figures["with routes"] += text.find("\nRoute0=") != std::string::npos;
        figures["with a suffix list that no file can say"] +=
            text.find("\nDNS-SuffixSearchOrder=\n") != std::string::npos;
        if (HasFailure()) {
            std::printf("%s\n%s\n", text.c_str(), machine::FormatState(machine).c_str());
        }
    }
    for (const auto& [name, count] : figures) {
        EXPECT_TRUE(count > 0 || machines < kEnough) << name;
    }
}

}  // namespace
}  // namespace sweep
