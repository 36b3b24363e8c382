#include "tests/requests/cases/CaseFile.h"

#include <algorithm>
#include <fstream>
#include <initializer_list>
#include <stdexcept>
#include <string_view>

#include "machine/MachineFile.h"

namespace cases {

namespace {

const std::filesystem::path kRoot =
    std::filesystem::path(TOOLBOX_SOURCE_DIR) / "tests" / "requests" / "cases";

std::filesystem::path BaseMachine(const std::string& name) {
    return kRoot / "machines" / (name + ".json");
}

Json LoadJson(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    if (!in) {
        throw std::runtime_error(file.string() + " cannot be read");
    }
    try {
        return Json::parse(in);
    } catch (const Json::exception& error) {
        throw std::runtime_error(file.string() + ": " + error.what());
    }
}

/// A misspelt member would be a check that is never made.
void CheckMembers(const Json& object, std::initializer_list<std::string_view> known) {
    for (const auto& [name, value] : object.items()) {
        if (std::ranges::find(known, name) == known.end()) {
            throw std::runtime_error("unknown member \"" + name + "\"");
        }
    }
}

void CollectChanges(const Json& before, const Json& after, const std::string& place,
                    Json& changes) {
    if (before == after) {
        return;
    }
    const bool listsOfObjects = before.is_array() && after.is_array() &&
                                before.size() == after.size() && before.front().is_object();
    if (listsOfObjects) {
        for (std::size_t i = 0; i < before.size(); ++i) {
            CollectChanges(before[i], after[i], place + "/" + std::to_string(i), changes);
        }
    } else if (before.is_object() && after.is_object()) {
        for (const auto& [name, value] : before.items()) {
            CollectChanges(value, after.value(name, Json()), place + "/" + name, changes);
        }
        for (const auto& [name, value] : after.items()) {
            if (!before.contains(name)) {
                changes[place + "/" + name] = value;
            }
        }
    } else {
        changes[place] = after;
    }
}

}  // namespace

std::filesystem::path CasesFolder() {
    return kRoot / "data";
}

std::vector<std::string> ListCases() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(CasesFolder())) {
        if (entry.is_directory()) {
            names.push_back(entry.path().filename().string());
        }
    }
    std::ranges::sort(names);
    return names;
}

machine::State LoadCaseMachine(const std::filesystem::path& file) {
    Json json = LoadJson(file);
    if (!json.contains("base")) {
        return machine::ParseState(json.dump());
    }
    CheckMembers(json, {"base", "set"});
    Json machine = LoadJson(BaseMachine(json["base"].get<std::string>()));
    const Json set = json.value("set", Json::object());
    for (const auto& [place, value] : set.items()) {
        machine[Json::json_pointer(place)] = value;
    }
    return machine::ParseState(machine.dump());
}

machine::State LoadBaseMachine(const std::string& name) {
    return machine::LoadState(BaseMachine(name));
}

Case LoadCase(const std::string& name) {
    const std::filesystem::path folder = CasesFolder() / name;
    Case loaded;
    loaded.name = name;
    loaded.configuration = folder / "configuration.ini";
    loaded.machine = LoadCaseMachine(folder / "machine.json");
    const Json expected = LoadJson(folder / "expected.json");
    CheckMembers(expected, {"about", "file", "passes"});
    loaded.file = expected.value("file", Json::object());
    CheckMembers(loaded.file, {"name", "stands", "atHome", "unreadable"});
    for (const Json& pass : expected.at("passes")) {
        CheckMembers(pass, {"about", "faults", "result", "escaped", "reply", "errors", "actions",
                            "log", "apartment", "apartmentLeft", "hostThrowsAt", "wholeLog",
                            "changes", "file", "kept", "afterRestart", "sameProcess"});
        loaded.passes.push_back(pass);
    }
    if (loaded.passes.empty()) {
        throw std::runtime_error(name + " expects nothing");
    }
    return loaded;
}

Json ListChanges(const machine::State& before, const machine::State& after) {
    const auto describe = [](const machine::State& state) {
        Json json = Json::parse(machine::FormatState(state));
        for (std::size_t i = 0; i < state.routes.size(); ++i) {
            const machine::PersistedRoute& route = state.routes[i];
            json["routes"][i] = route.destination + " " + route.mask + " " + route.nextHop + " " +
                                std::to_string(route.metric);
        }
        return json;
    };
    Json changes = Json::object();
    CollectChanges(describe(before), describe(after), "", changes);
    return changes;
}

}  // namespace cases
