#include "tests/cases/harness/KeptLeaks.h"

#include <string_view>

namespace e2e {

namespace {

std::string Origin(const machine::TraceEntry& call, std::string_view detail) {
    std::string origin = call.function + ", call " + std::to_string(call.number);
    if (!detail.empty()) {
        origin += ", ";
        origin += detail;
    }
    return origin;
}

/// What may stay, by its origin.
std::map<std::string, std::string> Expected(std::span<const machine::TraceEntry> calls) {
    std::map<std::string, std::string> expected;
    const machine::TraceEntry* outputPipe = nullptr;
    const machine::TraceEntry* inputPipe = nullptr;
    const machine::TraceEntry* policy = nullptr;
    for (const machine::TraceEntry& call : calls) {
        if (call.function == "CreatePipe") {
            outputPipe = inputPipe;
            inputPipe = &call;
        } else if (call.function == "GetExitCodeProcess" && outputPipe != nullptr) {
            expected[Origin(*outputPipe, "write end")] = "child's end of the output pipe";
            expected[Origin(*inputPipe, "read end")] = "child's end of the input pipe";
        } else if (call.function == "LsaOpenPolicy") {
            policy = &call;
        } else if (call.function == "NetWkstaGetInfo" && call.failed && policy != nullptr) {
            expected[Origin(*policy, {})] = "policy without workstation information";
        }
    }
    return expected;
}

}  // namespace

Balance Weigh(const machine::Ledger& ledger, std::span<const machine::TraceEntry> calls) {
    Balance balance;
    const auto expected = Expected(calls);
    for (const machine::Ledger::Item& item : ledger.Outstanding()) {
        const auto found = expected.find(item.origin);
        if (found != expected.end() && item.count == 1) {
            ++balance.kept[found->second];
        } else {
            balance.leaks.push_back("not returned: " + item.kind + " (" + item.origin + ")");
        }
    }
    for (const std::string& misuse : ledger.Misuse()) {
        balance.leaks.push_back("misuse: " + misuse);
    }
    return balance;
}

}  // namespace e2e
