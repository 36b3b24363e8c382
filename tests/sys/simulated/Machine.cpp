#include "tests/sys/simulated/Machine.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace sys_tests {

namespace {

/// Arguments that are no choice of the caller: what came back, and what the machine says about
/// itself.
bool IsTheMachines(std::string_view function, std::string_view argument) {
    constexpr std::pair<std::string_view, std::string_view> kOwn[] = {
        {"ExecMethod", "ReturnValue"},
        {"ExecMethod", "ReturnValue (injected)"},
        {"ExecMethod", "in"},  // put one by one before
        {"ExecQuery", "rows"},
        {"Get", "value"},
        {"GetComputerObjectNameA", "name"},
        {"GetExitCodeProcess", "code"},
        {"GetMethod", "class"},
        {"PeekNamedPipe", "available"},
        {"SpawnInstance", "class"},
    };
    return std::find(std::begin(kOwn), std::end(kOwn), std::pair(function, argument)) !=
           std::end(kOwn);
}

std::string Describe(const machine::TraceEntry& entry) {
    std::string text = NameOf(entry);
    for (const auto& [name, value] : entry.arguments) {
        if (!IsTheMachines(entry.function, name)) {
            text += " " + name + "=" + value;
        }
    }
    return text;
}

}  // namespace

Machine::Machine(machine::State state) : simulation_(std::move(state)) {
    simulation_.Attach(GetModuleHandleA(nullptr));
}

Outcome Machine::Run(const std::function<void()>& operation) {
    const std::size_t before = simulation_.GetTrace().Size();
    const std::size_t blocksBefore = comMemory_.OutstandingBlocks();
    const Outcome outcome = OutcomeOf(operation);
    lostComBlocks_ = comMemory_.OutstandingBlocks() - blocksBefore;
    const std::vector<machine::TraceEntry>& all = simulation_.GetTrace().Entries();
    entries_.assign(all.begin() + static_cast<std::ptrdiff_t>(before), all.end());
    return outcome;
}

std::vector<std::string> Machine::Calls() const {
    std::vector<std::string> calls;
    for (const machine::TraceEntry& entry : entries_) {
        if (entry.function != "Release") {
            calls.push_back(Describe(entry));
        }
    }
    return calls;
}

std::vector<std::string> Machine::Calls(std::string_view function) const {
    std::vector<std::string> calls;
    for (const machine::TraceEntry& entry : entries_) {
        if (entry.function == function) {
            calls.push_back(Describe(entry));
        }
    }
    return calls;
}

std::vector<std::string> Machine::CallNames() const {
    std::vector<std::string> names;
    std::transform(entries_.begin(), entries_.end(), std::back_inserter(names), NameOf);
    return names;
}

std::vector<std::string> Machine::Leaks() {
    std::vector<std::string> leaks;
    for (const machine::Ledger::Item& item : simulation_.GetLedger().Outstanding()) {
        leaks.insert(leaks.end(), item.count, item.kind);
    }
    for (const std::string& misuse : simulation_.GetLedger().Misuse()) {
        // "CoUninitialize, call 12: ..." without the number.
        leaks.push_back(misuse.substr(0, misuse.find(',')) + misuse.substr(misuse.find(": ")));
    }
    return leaks;
}

std::string NameOf(const machine::TraceEntry& entry) {
    return entry.object.empty() ? entry.function : entry.object + "::" + entry.function;
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
    const auto found =
        std::find_if(entry.arguments.begin(), entry.arguments.end(),
                     [name](const auto& argument) { return argument.first == name; });
    if (found == entry.arguments.end()) {
        throw std::logic_error(entry.function + " has no argument " + std::string(name));
    }
    return found->second;
}

std::vector<std::string> ConnectionCalls() {
    return {
        "CoInitializeEx mode=0x0",
        "CoInitializeSecurity authentication level=2 impersonation level=3 capabilities=0x0",
        "CoCreateInstance context=0x1",
        "IWbemLocator::ConnectServer namespace=root\\cimv2 user=",
        "CoSetProxyBlanket authentication=10 authorisation=0 authentication level=3 impersonation "
        "level=3 capabilities=0x0",
    };
}

}  // namespace sys_tests
