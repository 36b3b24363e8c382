#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "host/reading/File.h"

namespace host::reading {

/// Lets the module's walk go through the loaded file and notes in its sections what it looks up,
/// finds and sends. `entryAt` gives the entry of a line. Returns why the module gives the file up.
std::optional<Refusal> FollowModule(IniFile& file, std::vector<Section>& sections,
                                    const std::function<Entry*(std::size_t line)>& entryAt);

}  // namespace host::reading
