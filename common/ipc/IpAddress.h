#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <string>

namespace ipc {

class IPAddress {
public:
    virtual ~IPAddress() = default;

protected:
    IPAddress() = default;
    IPAddress(const IPAddress&) = default;
    IPAddress& operator=(const IPAddress&) = default;
};

/// An IPv4 address, mask or gateway. A small value: copying copies the address alone.
class IPv4Address : public IPAddress {
public:
    /// 0.0.0.0
    IPv4Address() = default;

    /// Resolves `text` (see Resolve). 0.0.0.0 when a host name resolves to no address.
    explicit IPv4Address(const std::string& text);

    IPv4Address(const IPv4Address& other) noexcept : IPAddress(), address_(other.address_) {}
    IPv4Address& operator=(const IPv4Address& other) noexcept {
        address_ = other.address_;
        return *this;
    }

    /// A text that starts with a letter is a host name and is looked up (WSAStartup,
    /// gethostbyname); throws CIPAddressError when it does not resolve. Any other text goes through
    /// inet_addr, whose failure value reads as 255.255.255.255; that throws nothing.
    void Resolve(const std::string& text);

    /// The dotted quad.
    std::string ToString() const;

    /// In network byte order, as the Winsock functions deliver it.
    std::uint32_t NetworkOrder() const noexcept { return address_; }
    /// Not by ntohl: sorting thousands of routes asks for little else.
    std::uint32_t HostOrder() const noexcept {
        const auto bytes = std::bit_cast<std::array<std::uint8_t, 4>>(address_);
        return std::uint32_t{bytes[0]} << 24U | std::uint32_t{bytes[1]} << 16U |
               std::uint32_t{bytes[2]} << 8U | std::uint32_t{bytes[3]};
    }

    bool operator==(const IPv4Address& other) const noexcept { return address_ == other.address_; }
    bool operator!=(const IPv4Address& other) const noexcept { return address_ != other.address_; }
    /// The numeric order of the dotted quads.
    bool operator<(const IPv4Address& other) const noexcept {
        return HostOrder() < other.HostOrder();
    }

private:
    std::int32_t state_ = -1;  // 0 once Resolve was called; nothing reads it
    std::uint32_t address_ = 0;
};

}  // namespace ipc
