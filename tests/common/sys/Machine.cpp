#include "tests/common/sys/Machine.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "machine/Balance.h"

namespace sys_tests {

namespace {

/// Arguments that are no choice of the caller: what came back, and what the machine says about
/// itself.
bool IsTheMachines(std::string_view function, std::string_view argument) {
    constexpr std::pair<std::string_view, std::string_view> kOwn[] = {
        {"GetComputerObjectNameA", "name"},
        {"GetExitCodeProcess", "code"},
        {"PeekNamedPipe", "available"},
    };
    return std::ranges::find(kOwn, std::pair(function, argument)) != std::end(kOwn);
}

std::string NameOf(const machine::TraceEntry& entry) {
    return entry.object.empty() ? entry.function : entry.object + "::" + entry.function;
}

std::string Describe(const machine::TraceEntry& entry) {
    std::string text = NameOf(entry);
    for (const auto& [name, value] : entry.arguments) {
        text += IsTheMachines(entry.function, name) ? "" : " " + name + "=" + value;
    }
    return text;
}

}  // namespace

Machine::Machine(machine::State state) : simulation_(std::move(state)) {
    simulation_.Attach(GetModuleHandleA(nullptr));
}

Machine::~Machine() {
    EXPECT_THAT(machine::Weigh(simulation_.GetLedger(), simulation_.GetTrace().Entries()).leaks,
                testing::IsEmpty());
    EXPECT_THAT(simulation_.Unexpected(), testing::IsEmpty());
}

Outcome Machine::Run(const std::function<void()>& operation) {
    const std::size_t before = simulation_.GetTrace().Size();
    const std::size_t blocksBefore = comMemory_.OutstandingBlocks();
    const Outcome outcome = OutcomeOf(operation);
    EXPECT_EQ(comMemory_.OutstandingBlocks(), blocksBefore);
    const Entries& all = simulation_.GetTrace().Entries();
    entries_.assign(all.begin() + static_cast<std::ptrdiff_t>(before), all.end());
    return outcome;
}

std::vector<std::string> Machine::Texts(std::string_view function) const {
    std::vector<std::string> texts;
    for (const machine::TraceEntry& entry : entries_) {
        if (function.empty() ? entry.function != "Release" : entry.function == function) {
            texts.push_back(Describe(entry));
        }
    }
    return texts;
}

std::uint32_t CodeOf(const machine::TraceEntry& entry) {
    // "0x80041001 (WBEM_E_FAILED)", "error 5", "FALSE, error 5"; "null" and the like have none.
    const std::string& result = entry.result;
    if (const std::size_t error = result.find("error "); error != std::string::npos) {
        return static_cast<std::uint32_t>(std::stoul(result.substr(error + 6)));
    }
    return result.starts_with("0x") ? static_cast<std::uint32_t>(std::stoull(result, nullptr, 16))
                                    : 0;
}

std::string ArgumentOf(const machine::TraceEntry& entry, std::string_view name) {
    for (const auto& argument : entry.arguments) {
        if (argument.first == name) {
            return argument.second;
        }
    }
    throw std::logic_error(entry.function + " has no argument " + std::string(name));
}

machine::State MemberIn(std::string_view unit) {
    machine::State state = machine::DefaultState();
    machine::Domain& domain = state.domains.front();
    state.membership = machine::Membership::OfDomain(domain.flatName, domain.dnsName);
    machine::TextList& computers = unit.empty()     ? domain.computers
                                   : unit == "West" ? domain.units.at(1).computers
                                                    : domain.units.at(0).units.at(0).computers;
    computers.push_back(state.computerName);
    return state;
}

}  // namespace sys_tests
