#pragma once

#include <cstdint>

#include "common/sys/nic/NicInfo.h"

namespace sys {

/// The process's one tree, made and filled at the first call and never refreshed. An error of the
/// fill propagates and leaves it unmade, so that the next call tries again. No lock of its own: the
/// module works on the thread that calls it.
NicList& getNicList();

/// Adds one NicAdapter per IP-enabled adapter to `root`.
void fillNicList(NicList& root);

/// The index of the first adapter at that place on the PCI bus, -1 when there is none.
std::int32_t findNicIndexByPciLocation(NicList& root, std::uint32_t bus, std::uint32_t device,
                                       std::uint32_t function);

}  // namespace sys
