// A case: a folder with a configuration file, the machine it is for and what must come of it.
//
//     configuration.ini   presented to the module as it stands
//     machine.json        {"base": "workgroup", "set": {"/adapters/0/gateways": []}}: a machine of
//                         tests/requests/cases/machines with some members set; or a whole machine
//                         file
//     expected.json       {"about": ..., "file": {...}, "passes": [{...}, ...]}
//
// Members of "file": "name" (configuration.ini), "stands" ("inbox", "home": already beside the
// agent's program, or "nowhere"), "atHome" (the text of a file of that name beside the program,
// null for a folder, or true for another name of the file itself), "unreadable" (true: another
// program keeps it open and shares no reading).
//
// Members of a pass, with what they default to: "faults" (none; the rules of --fail), "result" (1),
// "escaped" (""), "reply" ({}), "errors" thrown inside ([]), "actions" ([]), "log" (not looked at)
// without level 1 and the line that names the file, or "wholeLog", "changes" of the machine by JSON
// pointer ({}), "apartment" that the calling thread has entered (none; "single", "multi") and
// "apartmentLeft" whether the module has taken it out of there (false), "hostThrowsAt" a part of
// the log line at which the host's sink throws (none), "file" ("put away"), "kept" resources that
// stay open on purpose ({}). With "afterRestart" the machine restarts after the pass, and that
// changes it as the member says. Before each pass the file stands where it stood at first, and the
// module is loaded anew, unless the pass says "sameProcess": true. "{any}" in an expected text
// stands for what Windows leaves open.
#pragma once

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "machine/State.h"

namespace cases {

using Json = nlohmann::ordered_json;

struct Case {
    std::string name;
    std::filesystem::path configuration;
    machine::State machine;
    Json file;
    std::vector<Json> passes;
};

/// The folder with the case folders, and the names in it.
std::filesystem::path CasesFolder();
std::vector<std::string> ListCases();

/// Throws std::runtime_error saying what is wrong with the folder.
Case LoadCase(const std::string& name);

/// The machine of a machine.json.
machine::State LoadCaseMachine(const std::filesystem::path& file);

/// A machine of tests/requests/cases/machines.
machine::State LoadBaseMachine(const std::string& name);

/// What differs between two machines: {"/adapters/0/gateways": new value}. Lists of as many objects
/// are compared one by one, other lists as a whole. A route is a text: "10.0.0.0 255.0.0.0 10.1.1.1
/// 5".
Json ListChanges(const machine::State& before, const machine::State& after);

}  // namespace cases
