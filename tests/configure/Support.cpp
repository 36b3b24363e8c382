#include "tests/configure/Support.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <iterator>

#include "machine/MachineFile.h"

namespace configure_tests {

Files::~Files() {
    for (const std::string& name : names_) {
        std::remove(name.c_str());
    }
}

std::string Files::Write(const std::string& name, const std::string& bytes) {
    std::ofstream(name, std::ios::binary) << bytes;
    return Name(name);
}

std::string Files::Write(const std::string& name, const machine::State& state) {
    return Write(name, machine::FormatState(state));
}

std::string Files::Name(const std::string& name) {
    names_.push_back(name);
    return name;
}

std::string ReadFile(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    EXPECT_TRUE(file) << name;
    return {std::istreambuf_iterator<char>(file), {}};
}

bool FileExists(const std::string& name) {
    return std::ifstream(name).is_open();
}

host_tests::Outcome Configure(Arguments arguments) {
    arguments.insert(arguments.begin(), "configure");
    return host_tests::RunHost(arguments);
}

Json ConfigureJson(Arguments arguments, unsigned long exitCode) {
    arguments.insert(arguments.end(), {"--format", "json"});
    const host_tests::Outcome outcome = Configure(arguments);
    EXPECT_EQ(outcome.exitCode, exitCode) << outcome.data << outcome.notes;
    EXPECT_TRUE(Json::accept(outcome.data)) << outcome.data << outcome.notes;
    return Json::parse(outcome.data, nullptr, false);
}

Json SettingOf(const Json& pass, const std::string& kind) {
    for (const Json& setting : pass.at("settings")) {
        if (setting.at("setting") == kind) {
            return setting;
        }
    }
    return nullptr;
}

}  // namespace configure_tests
