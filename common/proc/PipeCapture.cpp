#include "common/proc/PipeCapture.h"

#include <algorithm>
#include <new>

namespace proc {

namespace {

constexpr DWORD kPipeSize = 65536;
constexpr DWORD kDefaultSize = 0;

/// Replaces a handle by a duplicate that the child does not inherit.
bool MakeNonInheritable(lang::KernelHandle& handle) {
    HANDLE duplicate = nullptr;
    HANDLE const process = GetCurrentProcess();
    if (DuplicateHandle(process, handle.Get(), process, &duplicate, 0, FALSE,
                        DUPLICATE_SAME_ACCESS) == 0) {
        return false;
    }
    handle.Reset(duplicate);
    return true;
}

}  // namespace

bool PipeCapture::Pipe::Create(DWORD size) {
    SECURITY_ATTRIBUTES inheritable{sizeof inheritable, nullptr, TRUE};
    return CreatePipe(read.Receive(), write.Receive(), &inheritable, size) != 0;
}

void PipeCapture::Pipe::Close() {
    read.Reset();
    write.Reset();
}

bool PipeCapture::Attach(STARTUPINFOA& startupInfo) {
    if (!CreatePipes() || !RedirectStandardHandles()) {
        return false;
    }
    if (!KeepParentEnds()) {
        Restore();
        return false;
    }
    startupInfo.dwFlags |= STARTF_USESTDHANDLES;
    startupInfo.hStdInput = inputPipe_.read.Get();
    startupInfo.hStdOutput = outputPipe_.write.Get();
    startupInfo.hStdError = errorPipe_.write.Get();
    return true;
}

bool PipeCapture::CreatePipes() {
    if (inputPipe_.Create(kPipeSize) && outputPipe_.Create(kDefaultSize) &&
        errorPipe_.Create(kPipeSize)) {
        return true;
    }
    inputPipe_.Close();
    outputPipe_.Close();
    errorPipe_.Close();
    return false;
}

bool PipeCapture::RedirectStandardHandles() {
    savedOutput_ = GetStdHandle(STD_OUTPUT_HANDLE);
    savedError_ = GetStdHandle(STD_ERROR_HANDLE);
    savedInput_ = GetStdHandle(STD_INPUT_HANDLE);
    saved_ = true;
    return SetStdHandle(STD_OUTPUT_HANDLE, outputPipe_.write.Get()) != 0 &&
           SetStdHandle(STD_ERROR_HANDLE, errorPipe_.write.Get()) != 0 &&
           SetStdHandle(STD_INPUT_HANDLE, inputPipe_.read.Get()) != 0;
}

bool PipeCapture::KeepParentEnds() {
    return MakeNonInheritable(inputPipe_.write) && MakeNonInheritable(outputPipe_.read) &&
           MakeNonInheritable(errorPipe_.read);
}

bool PipeCapture::Drain() {
    const bool outputRead = DrainPipe(outputPipe_, STD_OUTPUT_HANDLE, output_);
    const bool errorRead = DrainPipe(errorPipe_, STD_ERROR_HANDLE, error_);
    return outputRead && errorRead;
}

bool PipeCapture::DrainPipe(const Pipe& pipe, DWORD echoTo, std::string& captured) {
    for (;;) {
        DWORD available = 0;
        if (PeekNamedPipe(pipe.read.Get(), nullptr, 0, nullptr, &available, nullptr) == 0 ||
            available == 0) {
            return true;
        }
        DWORD read = 0;
        const DWORD wanted = std::min<DWORD>(available, static_cast<DWORD>(buffer_.size() - 2));
        if (ReadFile(pipe.read.Get(), buffer_.data(), wanted, &read, nullptr) == 0) {
            return false;
        }
        buffer_[read] = '\0';
        buffer_[read + 1] = '\0';
        try {
            captured += buffer_.data();  // zero-terminated: a NUL ends what is kept of a read
        } catch (const std::bad_alloc&) {
            return false;
        }
        HANDLE const echo = GetStdHandle(echoTo);
        // While the redirection lasts the standard handle is this very pipe, and an echo would feed
        // it with its own bytes for ever.
        if (echo != nullptr && echo != pipe.write.Get()) {
            DWORD written = 0;
            WriteFile(echo, buffer_.data(), read, &written, nullptr);
        }
    }
}

bool PipeCapture::Restore() {
    if (!saved_) {
        return false;
    }
    const bool input = SetStdHandle(STD_INPUT_HANDLE, savedInput_) != 0;
    const bool output = SetStdHandle(STD_OUTPUT_HANDLE, savedOutput_) != 0;
    const bool error = SetStdHandle(STD_ERROR_HANDLE, savedError_) != 0;
    return input && output && error;
}

}  // namespace proc
