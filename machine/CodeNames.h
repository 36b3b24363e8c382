// Readable names of the codes that served calls give.
#pragma once

#include <cstdint>
#include <string>

namespace machine {

/// "S_OK", "0x80041002 (WBEM_E_NOT_FOUND)", "0x800401FF".
std::string DescribeHresult(std::uint32_t code);

}  // namespace machine
