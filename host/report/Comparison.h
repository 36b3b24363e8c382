// A machine before and after, part by part, as a picture shows it. Texts are in the system code
// page.
#pragma once

#include <string>
#include <vector>

#include "machine/State.h"

namespace host::report {

/// What becomes of a value, or what it comes from.
enum class Mark {
    kSame,
    kMoved,  ///< it stands in another place of its list
    kGone,   ///< there before, and not after
    kNew,    ///< there after, and not before
};

struct Entry {
    std::string text;
    Mark mark = Mark::kSame;
};

struct Group {
    const char* name;  ///< "DNS servers"
    std::vector<Entry> entries;
};

/// The machine as a whole, or an adapter.
struct Part {
    std::string name;
    std::string remark;  ///< why it is out of use, where it is
    bool isAdapter = false;
    std::vector<Group> before;
    std::vector<Group> after;

    bool Changes() const;
};

/// The machine first, then its adapters in order. A persistent route stands with the adapter that
/// reaches its gateway, before or after; with the machine where none does.
std::vector<Part> CompareParts(const machine::State& before, const machine::State& after);

}  // namespace host::report
