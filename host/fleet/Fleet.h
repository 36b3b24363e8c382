// Plans for many machines, one after the other.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/configure/Result.h"
#include "host/configure/RunOnce.h"
#include "host/fleet/Folder.h"

namespace host::fleet {

/// One machine's plan. It is large; whoever goes through a fleet keeps what it shows of it.
struct Planned {
    const Member& member;
    /// None where nothing could be planned; `fault` then says why.
    std::optional<configure::Result> result;
    std::string fault;
    int exitCode;  ///< that "configure --plan" would have
};

struct Source {
    std::string module;
    /// Of the one configuration file for all; empty where each has its own: where it stands, and
    /// what people call it.
    std::string file;
    std::string fileName;
};

/// Whatever is wrong with the member is told, not thrown.
Planned PlanFor(const Member& member, const Source& source, const configure::Watcher& watcher);

}  // namespace host::fleet
