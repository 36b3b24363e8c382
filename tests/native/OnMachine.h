#pragma once

#include <gtest/gtest.h>

#include <cstdarg>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "common/logging/LogSink.h"
#include "common/sys/NicDiscovery.h"
#include "common/util/Strings.h"
#include "tests/native/FakeMachine.h"

namespace fake {

/// Notes lines as "2 text".
class RecordingLog : public logging::ILogSink {
public:
    std::vector<std::string> lines;

    void Log(std::uint32_t level, const char* format, ...) override {
        std::va_list arguments;
        va_start(arguments, format);
        lines.push_back(std::to_string(level) + " " + util::FormatV(format, arguments));
        va_end(arguments);
    }
};

/// A test on a new machine with four adapters, in the tree's order: 5 (no PCI device), 7 and 9 (PCI
/// bus 2 and 3), 4 (no PCI device). A change that the machine was asked for and the test has not
/// taken fails the test.
class OnMachine : public testing::Test {
protected:
    OnMachine() : machine(fake::Reset()) {
        machine.adapters = {fake::Adapter(), fake::PciAdapter(7, 2), fake::PciAdapter(9, 3),
                            fake::Adapter()};
        machine.adapters[0].index = 5;
        machine.adapters[0].pnpDeviceId = "ROOT\\VIRTUAL\\0000";
        machine.adapters[3].index = 4;
        // The tree is made once in the life of a process, from what the first test has set up.
        sys::getNicList();
        machine.queries.clear();
    }

    void TearDown() override { EXPECT_EQ(TakeChanges(), ""); }

    /// Makes the machine a member of CORP, corp.example, with its object in East/Sales.
    void MakeMember() {
        machine.member = true;
        machine.domain = "CORP";
        machine.dnsDomain = "corp.example";
        machine.unit = "East/Sales";
    }

    fake::Adapter& Adapter(std::uint32_t index) {
        for (fake::Adapter& adapter : machine.adapters) {
            if (adapter.index == index) {
                return adapter;
            }
        }
        throw std::out_of_range("no such adapter");
    }

    /// What the machine was asked to change since the last call, joined by "; ".
    std::string TakeChanges() {
        std::string text;
        for (const std::string& change : std::exchange(machine.changes, {})) {
            text += (text.empty() ? "" : "; ") + change;
        }
        return text;
    }

    fake::Machine& machine;
};

}  // namespace fake
