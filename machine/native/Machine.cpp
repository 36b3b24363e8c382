#include "machine/native/Machine.h"

#include <utility>

#include "machine/model/Network.h"

namespace native {

Machine& TheMachine() {
    static Machine machine;
    return machine;
}

Machine& Reset(machine::State state) {
    Machine& machine = TheMachine() = Machine();
    machine.state = std::move(state);
    return machine;
}

void Machine::PassTime(std::uint64_t milliseconds) {
    clock += milliseconds;
    machine::model::PassTime(state, milliseconds);
}

Call::Call(std::string_view function, machine::CallArguments arguments)
    : started_(std::chrono::steady_clock::now()), position_(TheMachine().trace.Size()) {
    machine::TraceEntry& entry = TheMachine().trace.Append();
    entry.startedAt = TheMachine().clock;
    entry.function = function;
    entry.arguments = std::move(arguments);
}

Call::~Call() {
    Entry().endedAt = TheMachine().clock;
    TheMachine().timeInCalls += std::chrono::steady_clock::now() - started_;
}

std::optional<std::uint32_t> Call::Fault() {
    machine::FaultPlan& faults = TheMachine().faults;
    const auto code = faults.OnCall(Entry().function, Entry().arguments);
    Entry().faultPoint = faults.CallsSeen();
    Entry().injected = Entry().failed = code.has_value();
    return code;
}

std::optional<std::uint32_t> Call::Outcome(std::string_view name) {
    return TheMachine().faults.OnOutcome(name, Entry().arguments);
}

void Call::AddArgument(const std::string& name, const std::string& value) {
    Entry().arguments.emplace_back(name, value);
}

}  // namespace native
