#pragma once

#include <string>
#include <string_view>

#include "common/config/ConfigBuilder.h"

namespace config_tests {

/// Sends events that are written as words: "DNS(10.0.0.1)" is a value, "+NIC(label)" opens a scope,
/// "-" closes one (as the end of an adapter; "-IP" as that kind's end), "#20(x)" is a kind by its
/// number. A word without brackets has an empty value.
void Send(config::ConfigBuilder& builder, std::string_view words);

}  // namespace config_tests
