#include "host/configure/Violations.h"

#include <set>

namespace host::configure {

namespace {

std::string Origin(const machine::TraceEntry& call) {
    return call.function + ", call " + std::to_string(call.number);
}

/// The origins, as the ledger writes them, of what the module lets be on purpose.
std::set<std::string> KeptOrigins(const std::vector<machine::TraceEntry>& calls) {
    std::set<std::string> kept;
    const machine::TraceEntry* outputPipe = nullptr;
    const machine::TraceEntry* inputPipe = nullptr;
    const machine::TraceEntry* policy = nullptr;
    bool comFailed = false;
    for (const machine::TraceEntry& call : calls) {
        if (call.function == "CreatePipe") {
            outputPipe = inputPipe;
            inputPipe = &call;
        } else if (call.function == "GetExitCodeProcess" && outputPipe != nullptr) {
            kept.insert(Origin(*outputPipe) + ", write end");
            kept.insert(Origin(*inputPipe) + ", read end");
        } else if (call.function == "LsaOpenPolicy") {
            policy = &call;
        } else if (call.function == "NetWkstaGetInfo" && call.failed && policy != nullptr) {
            kept.insert(Origin(*policy));
        } else if (call.function == "CoInitializeEx" || call.function == "CoInitialize") {
            comFailed = call.failed;
        } else if (call.function == "CoUninitialize" && comFailed) {
            kept.insert(Origin(call) + ": COM is not initialised on this thread");
            comFailed = false;
        }
    }
    return kept;
}

}  // namespace

std::vector<std::string> TakeViolations(machine::Simulation& simulation,
                                        const std::vector<machine::TraceEntry>& calls,
                                        std::size_t unexpectedBefore) {
    std::vector<std::string> violations;
    const std::set<std::string> kept = KeptOrigins(calls);
    machine::Ledger& ledger = simulation.GetLedger();
    for (const machine::Ledger::Item& item : ledger.Outstanding()) {
        if (item.count != 1 || !kept.contains(item.origin)) {
            violations.push_back("not given back: " + item.kind + ", from " + item.origin);
        }
    }
    for (const std::string& misuse : ledger.Misuse()) {
        if (!kept.contains(misuse)) {
            violations.push_back("misused: " + misuse);
        }
    }
    ledger.Clear();
    const std::vector<std::string>& unexpected = simulation.Unexpected();
    for (std::size_t i = unexpectedBefore; i < unexpected.size(); ++i) {
        violations.push_back("unexpected: " + unexpected[i]);
    }
    return violations;
}

}  // namespace host::configure
