#pragma once

#include <string_view>

#include "machine/State.h"

namespace sys_tests {

/// The default machine as a member of corp.example, its computer object in the unit of that slash
/// path; in the container of computers when it is empty.
machine::State MemberIn(std::string_view unit);

}  // namespace sys_tests
