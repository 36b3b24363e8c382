#pragma once

#include <cstdint>
#include <string>

namespace host::configure {

/// What the ReturnValue of one of Win32_NetworkAdapterConfiguration's methods means.
std::string DescribeAdapterMethod(std::uint32_t returnValue);

/// What a system error code or HRESULT means.
std::string DescribeCode(std::uint32_t code);

/// "84 (0x54)"
std::string CodeText(std::int64_t code);

}  // namespace host::configure
