#include "machine/Call.h"

#include "machine/CodeNames.h"
#include "machine/Text.h"

namespace machine {
namespace {

/// The flag of a thread that is inside the simulation. Kept with the platform's own thread storage:
/// the C++ runtime's makes calls that would come back here.
const DWORD kInsideSlot = TlsAlloc();

/// Takes the simulation's lock for a call of this thread. Gives the place of its entry in the
/// trace.
std::size_t Enter(Core& core) {
    EnterCriticalSection(core.Lock());
    TlsSetValue(kInsideSlot, &core);
    return core.trace.Size();
}

}  // namespace

ServingCore::ServingCore() {
    const DWORD lastError = GetLastError();
    if (TlsGetValue(kInsideSlot) == nullptr) {
        core_ = Core::Active();
    }
    SetLastError(lastError);
}

ServingCore::~ServingCore() {
    const DWORD lastError = GetLastError();
    core_.reset();
    SetLastError(lastError);
}

Call::Call(Core& core, std::string_view function, Arguments arguments, Failing failing)
    : Call(core, "", function, std::move(arguments), failing) {}

Call::Call(Core& core, std::string_view object, std::string_view function, Arguments arguments,
           Failing failing)
    : lastError_(GetLastError()), core_(core.shared_from_this()), position_(Enter(core)) {
    TraceEntry& entry = core_->trace.Append();
    entry.startedAt = core_->clock;
    entry.thread = GetCurrentThreadId();
    entry.object = object;
    entry.function = function;
    entry.arguments = std::move(arguments);
    if (failing == Failing::kPossible) {
        fault_ = core_->faults.OnCall(function, entry.arguments);
        entry.faultPoint = core_->faults.CallsSeen();
        entry.injected = fault_.has_value();
    }
}

Call::~Call() {
    Entry().endedAt = core_->clock;
    core_->timeInCalls += std::chrono::steady_clock::now() - started_;
    TlsSetValue(kInsideSlot, nullptr);
    LeaveCriticalSection(core_->Lock());
    SetLastError(lastError_);
}

void Call::AddArgument(std::string name, std::string value) {
    Entry().arguments.emplace_back(std::move(name), std::move(value));
}

std::string Call::Origin(std::string_view detail) const {
    return OriginOf(core_->trace.At(position_), detail);
}

void Call::Unexpected(std::string_view what) {
    const TraceEntry& entry = Entry();
    std::string name = entry.object.empty() ? entry.function : entry.object + "::" + entry.function;
    core_->RecordUnexpected("call " + std::to_string(entry.number) + ", " + name + ": " +
                            std::string(what));
}

HRESULT Call::Hresult(std::uint32_t code) {
    Note(DescribeHresult(code), (code & 0x80000000U) != 0, lastError_);
    Entry().code = code;
    return static_cast<HRESULT>(code);
}

LSTATUS Call::Status(std::uint32_t win32Error) {
    Note(win32Error == 0 ? "0" : "error " + std::to_string(win32Error), win32Error != 0,
         lastError_);
    Entry().code = win32Error;
    return static_cast<LSTATUS>(win32Error);
}

LONG Call::NtStatus(std::uint32_t status) {
    Note(Hex(status), (status & 0x80000000U) != 0, lastError_);
    Entry().code = status;
    return static_cast<LONG>(status);
}

BOOL Call::Boolean(bool succeeded, std::uint32_t error) {
    Note(succeeded ? "TRUE" : "FALSE, error " + std::to_string(error), !succeeded, error);
    return succeeded ? TRUE : FALSE;
}

void Call::Note(std::string result, bool failed, std::uint32_t error) {
    TraceEntry& entry = Entry();
    entry.result = std::move(result);
    entry.failed = failed;
    if (failed) {
        lastError_ = error;
        entry.code = error;
    }
}

BOOL Call::RealBoolean(BOOL result) {
    const DWORD error = GetLastError();
    Boolean(result != FALSE, error);
    return result;
}

}  // namespace machine
