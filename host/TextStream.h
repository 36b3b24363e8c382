#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace host {

/// Where a stream leads to.
struct Destination {
    bool isTerminal = false;   ///< one that obeys control sequences
    std::size_t columns = 80;  ///< of the terminal
};

/// One of the program's streams. Bytes are gathered and written in large pieces, because consoles
/// are slow.
class TextStream {
public:
    /// The handle must outlive the object; it may be none.
    TextStream(void* handle, const Destination& destination)
        : handle_(handle), destination_(destination) {}
    ~TextStream() { Flush(); }
    TextStream(const TextStream&) = delete;
    TextStream& operator=(const TextStream&) = delete;

    const Destination& Leads() const noexcept { return destination_; }

    void Write(std::string_view bytes);
    void Flush() noexcept;

    /// The Windows error of the write that failed, 0 while none has. What came after it is lost.
    std::uint32_t Error() const noexcept { return error_; }

private:
    void* handle_;
    Destination destination_;
    std::string gathered_;
    std::uint32_t error_ = 0;
};

}  // namespace host
