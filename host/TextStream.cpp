#include "host/TextStream.h"

#include <windows.h>

namespace host {

namespace {

constexpr std::size_t kMostGathered = 64 << 10;

}  // namespace

void TextStream::Write(std::string_view bytes) {
    gathered_ += bytes;
    if (gathered_.size() >= kMostGathered) {
        Flush();
    }
}

void TextStream::Flush() noexcept {
    std::string_view rest = gathered_;
    while (!rest.empty() && error_ == 0) {
        DWORD written = 0;
        if (WriteFile(handle_, rest.data(), static_cast<DWORD>(rest.size()), &written, nullptr) ==
            0) {
            error_ = GetLastError();
        }
        rest.remove_prefix(written);
    }
    gathered_.clear();
}

}  // namespace host
