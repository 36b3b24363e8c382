#pragma once

#include <cstdint>
#include <string>

#include "common/err/GeneralError.h"

namespace host::snapshot {

/// Inside a handler: which call of the read gave nothing and why, from the exception that is being
/// handled. "the query gives 0x80041003 (WMI: access denied)"
std::string DescribeReadFailure();

/// The same for a query that went well but for its last property.
std::string DescribeUnreadProperty(std::int32_t result);

/// Whether the key or the value is not there.
bool IsMissing(const sys::RegistryError& error);

}  // namespace host::snapshot
