// One served platform call: its entry in the trace, its fault, its result.
#pragma once

#include <windows.h>

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "machine/Core.h"

namespace machine {

enum class Failing { kPossible, kNever };

/// The simulation that a call of this thread is for, kept alive as long as this object: the active
/// one. Empty when there is none, and when the call comes from the simulation itself. Keeps the
/// thread's last error.
class ServingCore {
public:
    ServingCore();
    ~ServingCore();
    ServingCore(const ServingCore&) = delete;
    ServingCore& operator=(const ServingCore&) = delete;

    explicit operator bool() const { return core_ != nullptr; }
    Core& operator*() const { return *core_; }

private:
    std::shared_ptr<Core> core_;
};

/// Lives for the duration of a served call, under the simulation's lock. Its destructor leaves the
/// thread's last error as the call's result demands.
///
///     Call call(core, "RegCloseKey", {{"key", ...}});
///     if (const auto fault = call.Fault()) {
///         return call.Status(*fault);
///     }
class Call {
public:
    using Arguments = std::vector<std::pair<std::string, std::string>>;

    /// A call of a plain function.
    Call(Core& core, std::string_view function, Arguments arguments = {},
         Failing failing = Failing::kPossible);
    /// A call of an object that belongs to the core.
    Call(Core& core, std::string_view object, std::string_view function, Arguments arguments = {},
         Failing failing = Failing::kPossible);
    ~Call();
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

    Core& Machine() { return *core_; }
    Core* operator->() { return core_.get(); }

    /// The code to fail with when the fault plan wants this call to fail.
    const std::optional<std::uint32_t>& Fault() const { return fault_; }

    void AddArgument(std::string name, std::string value);
    /// Where a thing handed out by this call comes from: "CreatePipe call 12, read end".
    std::string Origin(std::string_view detail = {}) const;
    /// Records something that the simulated machine does not have.
    void Unexpected(std::string_view what);

    /// The result, noted and passed through.
    HRESULT Hresult(std::uint32_t code);
    HRESULT Hresult(HRESULT code) { return Hresult(static_cast<std::uint32_t>(code)); }
    LSTATUS Status(std::uint32_t win32Error);
    LONG NtStatus(std::uint32_t status);
    /// FALSE leaves the error as the thread's last error.
    BOOL Boolean(bool succeeded, std::uint32_t error = 0);
    /// A result of another kind; a failed one leaves the error as the thread's last error.
    void Note(std::string result, bool failed = false, std::uint32_t error = 0);
    /// The same for the result of a real call just made: its last error is kept.
    BOOL RealBoolean(BOOL result);

    /// What came of the method or program that the call ran.
    void SetOutcome(std::uint32_t outcome) { Entry().outcome = outcome; }

    /// Around a real call that blocks: other threads' calls are served meanwhile.
    template <typename Function>
    auto Unlocked(Function&& function) {
        LeaveCriticalSection(core_->Lock());
        const auto result = function();
        realError_ = GetLastError();
        EnterCriticalSection(core_->Lock());
        return result;
    }
    /// The last error that the real call inside Unlocked left.
    DWORD RealError() const { return realError_; }

private:
    TraceEntry& Entry() { return core_->trace.At(position_); }

    DWORD lastError_;
    std::chrono::steady_clock::time_point started_ = std::chrono::steady_clock::now();
    /// A simulation may end while one of its calls is under way.
    std::shared_ptr<Core> core_;
    std::size_t position_;
    std::optional<std::uint32_t> fault_;
    DWORD realError_ = 0;
};

}  // namespace machine
