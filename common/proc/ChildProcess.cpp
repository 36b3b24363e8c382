#include "common/proc/ChildProcess.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <new>

#include "common/err/GeneralError.h"

namespace proc {

namespace {

constexpr DWORD kPollMilliseconds = 100;

/// Leaves the lock when the scope ends, unless it was told not to.
class LockScope {
public:
    explicit LockScope(lang::CriticalSection& lock) : lock_(&lock) { lock.Enter(); }
    ~LockScope() {
        if (lock_ != nullptr) {
            lock_->Leave();
        }
    }
    LockScope(const LockScope&) = delete;
    LockScope& operator=(const LockScope&) = delete;
    void StayLocked() noexcept { lock_ = nullptr; }

private:
    lang::CriticalSection* lock_;
};

/// Gives the parent its standard handles back, however the run ends.
class RestoreScope {
public:
    explicit RestoreScope(PipeCapture* capture) : capture_(capture) {}
    ~RestoreScope() { Restore(); }
    RestoreScope(const RestoreScope&) = delete;
    RestoreScope& operator=(const RestoreScope&) = delete;
    void Restore() {
        if (capture_ != nullptr) {
            capture_->Restore();
            capture_ = nullptr;
        }
    }

private:
    PipeCapture* capture_;
};

void FormatInto(char* buffer, std::size_t size, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    _vsnprintf(buffer, size, format, arguments);
    va_end(arguments);
}

void CreateInheritablePipe(lang::KernelHandle& read, lang::KernelHandle& write,
                           std::int32_t errorLine) {
    SECURITY_ATTRIBUTES inheritable{sizeof inheritable, nullptr, TRUE};
    if (CreatePipe(read.Receive(), write.Receive(), &inheritable, 0) == 0) {
        throw ChildProcessError("CChildProcess::InitializeStartupInfo", errorLine, 6, 0);
    }
}

}  // namespace

CChildProcess::CChildProcess(logging::ILogSink& log, std::uint32_t killTimeout)
    : killTimeout_(killTimeout), log_(log) {}

CChildProcess::~CChildProcess() {
    const LockScope lock(lock_);
    signature_ = 0;
    if (process_ && WaitForSingleObject(process_.Get(), killTimeout_) == WAIT_TIMEOUT) {
        TerminateProcess(process_.Get(), 1);
    }
    process_.Reset();
    thread_.Reset();
}

std::int32_t CChildProcess::ExecuteCmd(const char* application, const char* commandLine,
                                       const std::string& user, const std::string& /*password*/,
                                       bool wait, std::uint16_t showWindow, PipeCapture* capture) {
    LockScope lock(lock_);
    FillCommandLine(commandLine);
    if (!user.empty()) {
        log_.Log(logging::kTrace,
                 "%s:%d CChildProcess::ExecuteCmd() calling ExecuteAsUser:Execute()",
                 "common\\proc\\ChildProcess", 752);
        return -1;  // nothing is run as another user
    }

    STARTUPINFOA startupInfo{};
    InitializeStartupInfo(startupInfo);
    // What the child inherits of the default pipes. A capture puts its own ends in their place.
    lang::KernelHandle childInput(startupInfo.hStdInput);
    lang::KernelHandle childOutput(startupInfo.hStdOutput);
    startupInfo.wShowWindow = showWindow;  // without its flag it has no effect
    RestoreScope redirection(capture);
    if (capture != nullptr) {
        capture->Attach(startupInfo);
    }

    if (!Start(application, startupInfo)) {
        return static_cast<std::int32_t>(GetLastError());
    }
    if (!wait) {
        return 0;
    }
    std::int32_t result = -1;
    if (!WaitForExit(capture, result)) {
        return -1;
    }
    redirection.Restore();
    if (capture != nullptr) {
        capture->Drain();
    }
    // After a wait the two child-side handles stay open and the lock is not left. Nobody waits for
    // either: the lock is re-entrant for this thread and ends with the object, and a request runs
    // few children.
    childInput.Release();
    childOutput.Release();
    lock.StayLocked();
    return result;
}

void CChildProcess::FillCommandLine(const char* commandLine) {
    const std::size_t size = std::strlen(commandLine) + 1;
    commandLine_.reset(static_cast<char*>(std::malloc(size)));
    if (!commandLine_) {
        throw std::bad_alloc();
    }
    // The command line is a format. The zeros stand for arguments that it must not ask for.
    FormatInto(commandLine_.get(), size, commandLine, 0LL, 0LL, 0LL, 0LL, 0LL, 0LL, 0LL, 0LL);
    commandLine_.get()[size - 1] = '\0';  // a text that has grown is cut without a terminator
}

void CChildProcess::InitializeStartupInfo(STARTUPINFOA& startupInfo) {
    lang::KernelHandle childOutput;
    CreateInheritablePipe(outputRead_, childOutput, 636);
    SetHandleInformation(outputRead_.Get(), HANDLE_FLAG_INHERIT, 0);
    lang::KernelHandle childInput;
    CreateInheritablePipe(childInput, inputWrite_, 643);
    SetHandleInformation(inputWrite_.Get(), HANDLE_FLAG_INHERIT, 0);

    startupInfo.cb = sizeof startupInfo;
    startupInfo.dwFlags |= STARTF_USESTDHANDLES;
    startupInfo.hStdError = childOutput.Get();
    startupInfo.hStdOutput = childOutput.Release();
    startupInfo.hStdInput = childInput.Release();
}

bool CChildProcess::Start(const char* application, STARTUPINFOA& startupInfo) {
    PROCESS_INFORMATION information{};
    if (CreateProcessA(application, commandLine_.get(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                       &startupInfo, &information) == 0) {
        return false;
    }
    process_.Reset(information.hProcess);
    thread_.Reset(information.hThread);
    return true;
}

bool CChildProcess::WaitForExit(PipeCapture* capture, std::int32_t& exitCode) {
    for (;;) {
        const DWORD waited = WaitForSingleObject(process_.Get(), kPollMilliseconds);
        if (waited == WAIT_OBJECT_0) {
            auto code = static_cast<DWORD>(exitCode);
            GetExitCodeProcess(process_.Get(), &code);
            exitCode = static_cast<std::int32_t>(code);
            process_.Reset();
            thread_.Reset();
            return true;
        }
        if (waited != WAIT_TIMEOUT) {
            return false;
        }
        if (capture != nullptr) {
            capture->Drain();
        }
    }
}

}  // namespace proc
