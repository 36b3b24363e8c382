// The account of everything that a simulated machine handed out and that must come back.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "machine/LeafLock.h"

namespace machine {

/// Any thread may ask it and write in it at any time.
class Ledger {
public:
    /// Interface references, handles and so on, by the name of their kind: "IWbemServices", "HKEY",
    /// "LSA policy handle", "LSA buffer", "NetApi buffer", "pipe handle", "process handle", "thread
    /// handle", "file handle", "module", "COM initialisation".
    struct Item {
        std::string kind;
        std::string origin;           ///< what handed it out: "CreatePipe call 12, read end"
        std::uintptr_t identity = 0;  ///< address or handle
        std::uint64_t count = 0;      ///< references or initialisations still held
    };

    /// What has not come back, in the order handed out.
    std::vector<Item> Outstanding() const;
    /// Releases of something that was not held: double releases, foreign handles.
    std::vector<std::string> Misuse() const;
    /// A readable list of both; empty when balanced.
    std::string Report() const;

    /// Hands one out; the same kind and identity again adds a reference.
    void HandOut(std::string_view kind, std::uintptr_t identity, std::string origin);
    /// Takes one reference back; false when none was held, which is not recorded as misuse here.
    bool TakeBack(std::string_view kind, std::uintptr_t identity);
    /// Whether it was handed out and is still good for use, the excused ones included.
    bool Holds(std::string_view kind, std::uintptr_t identity) const;
    /// The owner asked to close it and the fault plan refused: it stays open and may be closed
    /// again, but is no longer outstanding.
    void Excuse(std::string_view kind, std::uintptr_t identity);
    /// What was excused and never closed after all: kind and identity.
    std::set<std::pair<std::string, std::uintptr_t>> Excused() const;
    void RecordMisuse(std::string what);
    /// Forgets what is outstanding and what was misused, for a test that planted a leak.
    void Clear();

private:
    struct Entry {
        Item item;
        std::uint64_t order = 0;
    };
    using Key = std::pair<std::string, std::uintptr_t>;

    mutable LeafLock lock_;
    std::map<Key, Entry> items_;
    std::set<Key> excused_;
    std::vector<std::string> misuse_;
    std::uint64_t nextOrder_ = 0;
};

}  // namespace machine
