#pragma once

#include <cstdint>
#include <cstdio>
#include <exception>

namespace sys {

/// A COM error outside the module's family: a value that cannot be turned into text, or no memory
/// for a text. A method call turns it into its own error; everywhere else it leaves the module.
/// Making one takes no memory.
/// "COM operation failed. HRESULT is 0x80020005"
class ComError : public std::exception {
public:
    explicit ComError(std::int32_t result) noexcept : result_(result) {
        std::snprintf(text_, sizeof text_, "COM operation failed. HRESULT is 0x%08X",
                      static_cast<unsigned>(result));
    }
    const char* what() const noexcept override { return text_; }
    std::int32_t Result() const noexcept { return result_; }

private:
    std::int32_t result_;
    char text_[48] = {};
};

}  // namespace sys
