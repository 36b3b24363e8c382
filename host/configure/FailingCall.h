// The platform call behind an error, told so that the reader knows what part of the machine it is
// about.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "host/configure/RunOnce.h"

namespace host::configure {

struct FailingCall {
    /// `Get "DNSDomain" of "select ... where Index=7": 0x80041001`; empty where no call is known.
    std::string text;
    std::optional<std::uint32_t> adapter;  ///< the index of the adapter that it concerns
};

/// The failing call behind an error that carries the code: the last one that gave it, or one that
/// a fault was injected into, or one just before the error was caught. `calls` are the run's calls
/// until then.
FailingCall FindFailingCall(const Run& run, std::size_t calls, std::uint32_t code);

/// What was read last of an adapter or the registry, for an error that no call has given: the value
/// itself is at fault.
FailingCall FindLastRead(const Run& run);

}  // namespace host::configure
