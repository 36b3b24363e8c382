// The settings of a plan as they are grouped for a reader.
#pragma once

#include <string>
#include <vector>

#include "host/configure/Plan.h"

namespace host::configure {

/// A section of the file with what becomes of its settings.
struct SectionRows {
    std::string name;
    const Row* adapter = nullptr;  ///< the row of an adapter's section itself; else null
    /// The row of a section that the module does not read as a whole; else null.
    const Row* unread = nullptr;
    std::vector<const Row*> rows;  ///< the others, by line
};

/// In the order of the file. The rows must outlive them.
std::vector<SectionRows> GroupBySection(const std::vector<Row>& rows);

/// Without what a pass repeats of the one before.
std::vector<SectionRows> GroupNewsBySection(const std::vector<Row>& rows);

/// "[TCP/IP] Office network, on PCI 2/1/0 "Ethernet" (index 1)"
std::string HeadingOf(const SectionRows& section);

}  // namespace host::configure
