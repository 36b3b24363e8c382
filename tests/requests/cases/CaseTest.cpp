// Every folder under tests/requests/cases/data, from the file to the machine afterwards.
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "machine/Actions.h"
#include "machine/Balance.h"
#include "machine/Simulation.h"
#include "tests/requests/cases/CaseFile.h"
#include "tests/requests/harness/ModuleRun.h"
#include "tests/requests/harness/PresentedFile.h"
#include "tests/requests/harness/ThrownErrors.h"

namespace cases {
namespace {

/// The file of a case, with what lies beside the agent's program from the time before.
requests::PresentedFile MakeFile(const Case& tested, const requests::AgentFolder& agent) {
    using Stands = requests::PresentedFile::Stands;
    const std::string place = tested.file.value("stands", "inbox");
    requests::PresentedFile file(agent, tested.file.value("name", "configuration.ini"),
                                 support::ReadFile(tested.configuration),
                                 place == "inbox"  ? Stands::kInbox
                                 : place == "home" ? Stands::kHome
                                                   : Stands::kNowhere);
    if (tested.file.contains("atHome")) {
        const Json& there = tested.file["atHome"];
        if (there.is_null()) {
            std::filesystem::create_directory(file.Home());
        } else if (there.is_boolean()) {
            std::filesystem::create_hard_link(file.Present(), file.Home());
        } else {
            support::WriteFile(file.Home(), there.get<std::string>());
        }
    }
    return file;
}

machine::HostApartment ApartmentOf(const Json& pass) {
    const std::string name = pass.value("apartment", "");
    return name.empty()       ? machine::HostApartment::kNone
           : name == "single" ? machine::HostApartment::kSingleThreaded
                              : machine::HostApartment::kMultithreaded;
}

/// Another program that has the file open: nobody may read it, everybody may move it.
class ForeignReader {
public:
    explicit ForeignReader(const std::string& path)
        : handle_(CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                              0, nullptr)) {}
    ~ForeignReader() { CloseHandle(handle_); }
    ForeignReader(const ForeignReader&) = delete;
    ForeignReader& operator=(const ForeignReader&) = delete;

private:
    HANDLE handle_;
};

/// Log lines as a case lists them.
Json ListLog(const std::vector<std::string>& log, const std::string& path, bool whole) {
    Json lines = Json::array();
    for (std::string line : log) {
        if (const auto found = line.find(path); found != std::string::npos) {
            line.replace(found, path.size(), "{file}");
        }
        const bool isNamed = line == "0 Configure::HandleMessage(): config file={file}";
        if (whole || (!line.starts_with("1 ") && !isNamed)) {
            lines.push_back(line);
        }
    }
    return lines;
}

/// The pass with everything that it leaves out.
Json Complete(const Json& pass) {
    Json complete = {{"result", pass.value("result", 1)},
                     {"escaped", pass.value("escaped", "")},
                     {"reply", pass.value("reply", Json::object())},
                     {"errors", pass.value("errors", Json::array())},
                     {"actions", pass.value("actions", Json::array())},
                     {"changes", pass.value("changes", Json::object())},
                     {"apartmentLeft", pass.value("apartmentLeft", false)},
                     {"file", pass.value("file", "put away")},
                     {"kept", pass.value("kept", Json::object())},
                     {"leaks", Json::array()},
                     {"unexpected", Json::array()},
                     {"blocks of COM memory not given back", 0},
                     {"secret", ""}};
    for (const char* const optional : {"log", "wholeLog", "afterRestart"}) {
        if (pass.contains(optional)) {
            complete[optional] = pass[optional];
        }
    }
    if (!requests::ThrownErrors::CanBeSeen()) {
        complete.erase("errors");
    }
    return complete;
}

/// Takes the actual text over where the expected one says "{any}": what the platform leaves open.
void Settle(Json& expected, const Json& actual) {
    constexpr std::string_view kAny = "{any}";
    if (expected.is_string() && actual.is_string()) {
        const auto pattern = expected.get<std::string>();
        const auto text = actual.get<std::string>();
        const auto hole = pattern.find(kAny);
        if (hole != std::string::npos && text.size() >= pattern.size() - kAny.size() &&
            text.starts_with(pattern.substr(0, hole)) &&
            text.ends_with(pattern.substr(hole + kAny.size()))) {
            expected = actual;
        }
    } else if (expected.is_array() && actual.is_array()) {
        for (std::size_t i = 0; i < std::min(expected.size(), actual.size()); ++i) {
            Settle(expected[i], actual[i]);
        }
    } else if (expected.is_object() && actual.is_object()) {
        for (const auto& [name, value] : actual.items()) {
            if (expected.contains(name)) {
                Settle(expected[name], value);
            }
        }
    }
}

class CaseTest : public testing::TestWithParam<std::string> {};

TEST_P(CaseTest, EndsAsExpected) {
    const Case tested = LoadCase(GetParam());
    const requests::AgentFolder agent;
    const requests::PresentedFile file = MakeFile(tested, agent);
    machine::Simulation simulation(tested.machine);
    simulation.SetProgramFile(agent.Program());

    std::optional<requests::AttachedModule> module;
    std::map<std::string, std::size_t> keptBefore;
    std::size_t leaksBefore = 0;
    for (std::size_t i = 0; i < tested.passes.size(); ++i) {
        Json expected = Complete(tested.passes[i]);
        simulation.SetFaultPlan(
            machine::FaultPlan::Parse(tested.passes[i].value("faults", std::string())));
        const std::string path = file.Present();
        const machine::State before = simulation.GetState();
        if (!module) {
            module.emplace(simulation);
        }
        const machine::HostApartment apartment = ApartmentOf(tested.passes[i]);
        simulation.SetApartment(apartment);
        std::optional<ForeignReader> reader;
        if (tested.file.value("unreadable", false)) {
            reader.emplace(path);
        }
        const requests::RunResult run =
            module->Configure(path, tested.passes[i].value("hostThrowsAt", ""));
        reader.reset();
        if (i + 1 == tested.passes.size() || !tested.passes[i + 1].value("sameProcess", false)) {
            module.reset();
        }
        const machine::State after = simulation.GetState();
        const machine::Balance balance =
            machine::Weigh(simulation.GetLedger(), simulation.GetTrace().Entries());

        Json kept = Json::object();
        for (const auto& [name, count] : balance.kept) {
            if (count != keptBefore[name]) {
                kept[name] = count - keptBefore[name];
            }
        }
        keptBefore = balance.kept;
        Json actual = {
            {"result", run.result},
            {"escaped", run.escaped},
            {"reply", run.reply},
            {"errors", run.errors},
            {"actions", machine::ListActions(run.calls)},
            {"changes", ListChanges(before, after)},
            {"apartmentLeft",
             apartment != machine::HostApartment::kNone && !simulation.IsInApartment()},
            {"file", file.WhereIsIt()},
            {"kept", kept},
            {"leaks", std::vector<std::string>(
                          balance.leaks.begin() + static_cast<std::ptrdiff_t>(leaksBefore),
                          balance.leaks.end())},
            {"unexpected", run.unexpected},
            {"blocks of COM memory not given back", run.comBlocks},
            {"secret", requests::FindSecret(run, tested.machine)}};
        leaksBefore = balance.leaks.size();
        for (const char* const log : {"log", "wholeLog"}) {
            if (expected.contains(log)) {
                actual[log] = ListLog(run.log, path, log == std::string("wholeLog"));
            }
        }
        if (expected.contains("afterRestart")) {
            simulation.Restart();
            actual["afterRestart"] = ListChanges(after, simulation.GetState());
        }
        Settle(expected, actual);
        // Sorted, so that the difference shown is what differs.
        EXPECT_EQ(nlohmann::json(expected).dump(2), nlohmann::json(actual).dump(2))
            << "in pass " << i + 1;
    }
}

INSTANTIATE_TEST_SUITE_P(Data, CaseTest, testing::ValuesIn(ListCases()), [](const auto& tested) {
    std::string name = tested.param;
    std::ranges::replace(name, '-', '_');
    return name;
});

}  // namespace
}  // namespace cases
