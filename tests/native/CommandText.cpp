#include "tests/native/CommandText.h"

#include <utility>
#include <vector>

#include "common/config/command/ConfigureNic.h"
#include "common/err/GeneralError.h"
#include "common/lang/ClassName.h"
#include "common/util/Strings.h"
#include "machine/native/Machine.h"

namespace native {

namespace {

using config::command::ConfigureNic;
using config::command::IConfigureCommand;
using config::command::kNotSet;
using machine::TraceEntry;

constexpr std::uint32_t kAnyIndex = 5;

std::string Number(std::uint32_t number) {
    return number == kNotSet ? "n" : std::to_string(number);
}

std::string ShortClassName(const IConfigureCommand& command) {
    const std::string name = lang::ClassName(typeid(command));
    return name.substr(name.rfind(':') + 1);
}

/// "IPAddress={10.0.0.1}, SubnetMask={255.0.0.0}" without the names, and without what is null.
std::string ListsOf(std::string parameters) {
    for (std::size_t at = parameters.find("={"); at != std::string::npos;
         at = parameters.find("={")) {
        const std::size_t name = parameters.find_last_of(" ", at) + 1;  // 0 for the first
        parameters.erase(name, at + 1 - name);
    }
    return parameters.substr(0, parameters.find(", GatewayCostMetric=null"));
}

/// Empty for a call that changes nothing.
std::string ActionOf(const TraceEntry& call) {
    const auto argument = [&call](const char* name) { return std::string(call.Argument(name)); };
    if (call.function == "ExecMethod") {
        const std::string path = argument("path");
        if (path.starts_with("Win32_ComputerSystem")) {
            return argument("method") + " (" + argument("in") + ")";
        }
        const std::size_t index = path.find("Index=");
        return argument("method") +
               (index == std::string::npos ? "" : " " + path.substr(index + 6)) +
               (argument("in").empty() ? "" : " " + ListsOf(argument("in")));
    }
    if (call.function == "CreateProcessA") {
        return argument("command line");
    }
    if (call.function == "Sleep") {
        return "sleep " + argument("milliseconds");
    }
    if (call.function == "ADsOpenObject") {
        return "bind " + argument("path") + " as " + argument("user");
    }
    return call.function == "MoveHere" ? "move " + argument("source") : "";
}

/// Every method and program answers 0 and does nothing.
machine::FaultPlan DoingNothing() {
    std::vector<machine::FaultRule> rules;
    for (const machine::FaultPoint& point : machine::FaultPoints()) {
        if (point.kind == machine::FaultPoint::Kind::kOutcome) {
            machine::FaultRule& rule = rules.emplace_back();
            rule.function = point.name;
            rule.code = 0;
        }
    }
    return machine::FaultPlan(rules);
}

/// The text of one command that is no ConfigureNic.
std::string TextOf(IConfigureCommand& command) {
    static const machine::FaultPlan kDoingNothing = DoingNothing();
    Machine& machine = TheMachine();
    const auto domains = machine.state.domains;  // the directory moves objects all the same
    machine::FaultPlan faults = std::exchange(machine.faults, kDoingNothing);
    machine::Trace trace = std::exchange(machine.trace, {});
    machine.lastPassword.clear();
    std::string error;
    try {
        command.Execute();
    } catch (...) {
        error = " threw " + ErrorText();
    }
    std::string text = ActionsOf(machine.trace.Entries());
    const std::string mask = "Password=***";
    for (std::size_t at = text.find(mask); at != std::string::npos; at = text.find(mask, at)) {
        text.replace(at, mask.size(), "Password=" + machine.lastPassword);
    }
    machine.state.domains = domains;
    machine.faults = std::move(faults);
    machine.trace = std::move(trace);
    return (text.empty() ? ShortClassName(command) : text) + error;
}

std::string TextOf(ConfigureNic& nic) {
    const std::uint32_t index = nic.NicIndex() == kNotSet ? kAnyIndex : nic.NicIndex();
    for (const auto& command : nic.Commands()) {
        if (auto* const nicCommand = dynamic_cast<config::command::NicCommand*>(command.get())) {
            nicCommand->SetNicIndex(index);
        }
    }
    return "ConfigureNic " + Number(nic.Bus()) + "/" + Number(nic.Device()) + "/" +
           Number(nic.Function()) + " index " + Number(nic.NicIndex()) + " {" +
           native::TextOf(nic.Commands()) + "}";
}

}  // namespace

std::string ActionsOf(std::span<const TraceEntry> calls) {
    std::string text;
    for (const TraceEntry& call : calls) {
        const std::string action = ActionOf(call);
        text += (text.empty() || action.empty() ? "" : "; ") + action;
    }
    return text;
}

std::string TextOf(const config::command::CommandList& commands) {
    std::string text;
    for (const auto& command : commands) {
        auto* const nic = dynamic_cast<ConfigureNic*>(command.get());
        text += (text.empty() ? "" : "; ") + (nic != nullptr ? TextOf(*nic) : TextOf(*command));
    }
    return text;
}

std::string ErrorText() {
    try {
        throw;
    } catch (const err::CGeneralError& error) {
        return util::Format("%s:%d(%d) %s", error.SourceFile(), error.Line(), error.Code(),
                            error.Message());
    }
}

}  // namespace native
