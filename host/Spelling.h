#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// The name among `names` that was probably meant; empty when none is near. Regards no case.
std::string Nearest(std::string_view name, const std::vector<std::string>& names);

/// How many letters must be typed, deleted, replaced or swapped with their neighbour, case aside.
std::size_t EditDistance(std::string_view left, std::string_view right);

}  // namespace host
