#pragma once

#include <cstdint>

#include "machine/State.h"

namespace native {

/// A PCI adapter at bus, device 0, function 0, without settings.
machine::Adapter PciAdapter(std::uint32_t index, int bus);

/// A workgroup computer PC1 beside a domain corp.example in which joe may join and move. Its
/// adapters, in the tree's order: 5 (no PCI device), 7 and 9 (PCI bus 2 and 3), 4 (no PCI device).
machine::State FourAdapters();

}  // namespace native
