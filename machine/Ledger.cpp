#include "machine/Ledger.h"

#include <algorithm>

namespace machine {

std::vector<Ledger::Item> Ledger::Outstanding() const {
    std::vector<const Entry*> entries;
    entries.reserve(items_.size());
    for (const auto& [key, entry] : items_) {
        entries.push_back(&entry);
    }
    std::ranges::sort(entries, {}, &Entry::order);
    std::vector<Item> items;
    items.reserve(entries.size());
    for (const Entry* entry : entries) {
        items.push_back(entry->item);
    }
    return items;
}

std::string Ledger::Report() const {
    std::string report;
    for (const Item& item : Outstanding()) {
        report += "not returned: " + item.kind + " (" + item.origin + ")";
        if (item.count != 1) {
            report += ", " + std::to_string(item.count) + " times";
        }
        report += "\n";
    }
    for (const std::string& misuse : misuse_) {
        report += "misuse: " + misuse + "\n";
    }
    return report;
}

void Ledger::HandOut(std::string_view kind, std::uintptr_t identity, std::string origin) {
    const auto [place, isNew] = items_.try_emplace(Key(kind, identity));
    if (isNew) {
        place->second = {{std::string(kind), std::move(origin), identity, 1}, nextOrder_++};
    } else {
        ++place->second.item.count;
    }
}

bool Ledger::TakeBack(std::string_view kind, std::uintptr_t identity) {
    const auto found = items_.find(Key(kind, identity));
    if (found == items_.end()) {
        return excused_.erase(Key(kind, identity)) != 0;
    }
    if (--found->second.item.count == 0) {
        items_.erase(found);
    }
    return true;
}

bool Ledger::Holds(std::string_view kind, std::uintptr_t identity) const {
    const Key key(kind, identity);
    return items_.contains(key) || excused_.contains(key);
}

void Ledger::Excuse(std::string_view kind, std::uintptr_t identity) {
    if (items_.erase(Key(kind, identity)) != 0) {
        excused_.emplace(kind, identity);
    }
}

void Ledger::Clear() {
    items_.clear();
    misuse_.clear();
}

}  // namespace machine
