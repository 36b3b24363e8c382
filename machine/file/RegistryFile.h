// Registry values in a machine file: text and numbers stand as such, everything else as type and
// bytes.
#pragma once

#include <vector>

#include "machine/State.h"
#include "machine/file/JsonReader.h"

namespace machine::file {

/// {"SYSTEM\\Key": {"Name": "text", "Count": 5, "Raw": {"type": "REG_BINARY", "bytes": "00 FF"}}}
void Read(const Node& node, std::vector<RegistryKey>& keys);
Json WriteRegistry(const std::vector<RegistryKey>& keys);

}  // namespace machine::file
