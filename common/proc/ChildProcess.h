#pragma once

#include <windows.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

#include "common/lang/CriticalSection.h"
#include "common/lang/Handle.h"
#include "common/logging/LogSink.h"
#include "common/proc/PipeCapture.h"

namespace proc {

/// Starts one console program with its standard handles on pipes, so that it never writes into the
/// agent's own console, and optionally waits for it.
class CChildProcess {
public:
    /// `log` must outlive this object. `killTimeout`, in milliseconds, is how long the destructor
    /// waits for a child that was not waited for before it ends it; INFINITE never ends it.
    CChildProcess(logging::ILogSink& log, std::uint32_t killTimeout);
    virtual ~CChildProcess();
    CChildProcess(const CChildProcess&) = delete;
    CChildProcess& operator=(const CChildProcess&) = delete;

    /// `application` may be null: the program is then found from the command line. `commandLine`, a
    /// printf-style format that gets no arguments, must not hold "%". `user` must be empty: running
    /// as another user is only logged. `showWindow` is passed on and has no effect. `capture` may
    /// be null; it has its standard handles restored when this returns.
    ///
    /// Returns the child's exit code when waited for, 0 when not, the Windows error code when the
    /// child cannot be started, -1 when the wait fails or a user is given. Throws
    /// ChildProcessError when the pipes cannot be made.
    std::int32_t ExecuteCmd(const char* application, const char* commandLine,
                            const std::string& user, const std::string& password, bool wait,
                            std::uint16_t showWindow, PipeCapture* capture);

    /// Makes the default pipes and points `startupInfo`'s standard handles at the child's ends,
    /// which become the caller's to close.
    void InitializeStartupInfo(STARTUPINFOA& startupInfo);

private:
    struct FreeDeleter {
        void operator()(void* memory) const noexcept { std::free(memory); }
    };

    void FillCommandLine(const char* commandLine);
    bool Start(const char* application, STARTUPINFOA& startupInfo);
    bool WaitForExit(PipeCapture* capture, std::int32_t& exitCode);

    lang::CriticalSection lock_;                      // first: it outlives what it guards
    std::uint32_t signature_ = 0x43435000;            // marks a living object in a dump
    std::unique_ptr<char, FreeDeleter> commandLine_;  // CreateProcess writes into it
    lang::KernelHandle outputRead_;                   // the parent's ends of the default pipes
    lang::KernelHandle inputWrite_;
    lang::FileHandle process_;  // -1 where there is none
    lang::FileHandle thread_;
    std::uint32_t killTimeout_;
    logging::ILogSink& log_;
};

}  // namespace proc
