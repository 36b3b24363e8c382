#include "machine/Actions.h"

namespace machine {

std::string ArgumentOf(const TraceEntry& call, std::string_view name) {
    for (const auto& [argument, value] : call.arguments) {
        if (argument == name) {
            return value;
        }
    }
    return {};
}

namespace {

class ActionList {
public:
    void Add(const TraceEntry& call) {
        if (call.function == "SpawnInstance") {
            parameters_.clear();
        } else if (call.function == "Put") {
            parameters_ += parameters_.empty() ? "" : ", ";
            parameters_ += ArgumentOf(call, "name") + "=" + ArgumentOf(call, "value");
        } else if (call.function == "ExecMethod") {
            AddMethod(call);
        } else if (call.function == "CreateProcessA") {
            lines_.push_back(ArgumentOf(call, "command line") +
                             (call.failed ? " -> " + call.result : ""));
        } else if (call.function == "GetExitCodeProcess" && !lines_.empty()) {
            lines_.back() += " -> " + (call.failed ? call.result : ArgumentOf(call, "code"));
        } else if (call.function == "Sleep") {
            lines_.push_back("sleep " + ArgumentOf(call, "milliseconds"));
        } else if (call.function == "ADsOpenObject") {
            lines_.push_back("bind " + ArgumentOf(call, "path") + " as " +
                             ArgumentOf(call, "user") + " -> " + call.result);
        } else if (call.function == "MoveHere") {
            lines_.push_back("move " + ArgumentOf(call, "source") + " -> " + call.result);
        }
    }

    std::vector<std::string> Take() { return std::move(lines_); }

private:
    void AddMethod(const TraceEntry& call) {
        std::string returned = ArgumentOf(call, "ReturnValue");
        if (returned.empty()) {
            returned = ArgumentOf(call, "ReturnValue (injected)");
        }
        lines_.push_back(ArgumentOf(call, "method") + " on " + ArgumentOf(call, "path") + " (" +
                         parameters_ + ") -> " + (returned.empty() ? call.result : returned));
        parameters_.clear();
    }

    std::vector<std::string> lines_;
    std::string parameters_;
};

}  // namespace

std::vector<std::string> ListActions(std::span<const TraceEntry> calls) {
    ActionList actions;
    for (const TraceEntry& call : calls) {
        actions.Add(call);
    }
    return actions.Take();
}

}  // namespace machine
