#pragma once

#include <windows.h>

#include <array>
#include <string>

#include "common/lang/Handle.h"

namespace proc {

/// Collects a child's standard output and standard error while the parent waits for it, and echoes
/// to the parent's own what is taken over once Restore has undone the redirection. No operation
/// throws; false says that it failed.
class PipeCapture {
public:
    PipeCapture() = default;
    PipeCapture(const PipeCapture&) = delete;
    PipeCapture& operator=(const PipeCapture&) = delete;

    /// Makes the three pipes, points the parent's standard handles at the child's ends (the child
    /// inherits them) and puts the child's ends into `startupInfo`. Restore undoes the redirection.
    bool Attach(STARTUPINFOA& startupInfo);

    /// Takes over what both pipes hold at the moment. False if either read fails.
    bool Drain();

    /// Gives the parent its standard handles back. False when there is nothing to give back or a
    /// handle cannot be set.
    bool Restore();

    const std::string& StandardOutput() const noexcept { return output_; }
    const std::string& StandardError() const noexcept { return error_; }

private:
    struct Pipe {
        lang::KernelHandle read;
        lang::KernelHandle write;
        bool Create(DWORD size);
        void Close();
    };

    bool CreatePipes();
    bool RedirectStandardHandles();
    bool KeepParentEnds();
    bool DrainPipe(const Pipe& pipe, DWORD echoTo, std::string& captured);

    Pipe inputPipe_;
    Pipe outputPipe_;
    Pipe errorPipe_;
    bool saved_ = false;
    HANDLE savedInput_ = nullptr;
    HANDLE savedOutput_ = nullptr;
    HANDLE savedError_ = nullptr;
    std::string output_;
    std::string error_;
    std::array<char, 4096 + 2> buffer_{};  // a read and two terminating zeros
};

}  // namespace proc
