#pragma once

#include <cstdint>
#include <stdexcept>

namespace sys {

/// A COM error outside the module's family: a value that cannot be turned into text, or no memory
/// for a text. A method call turns it into its own error; everywhere else it leaves the module.
/// "COM operation failed. HRESULT is 0x80020005"
class ComError : public std::runtime_error {
public:
    explicit ComError(std::int32_t result);
    std::int32_t Result() const noexcept { return result_; }

private:
    std::int32_t result_;
};

}  // namespace sys
