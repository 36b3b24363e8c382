#include "machine/Ledger.h"

#include <algorithm>
#include <mutex>

namespace machine {

std::vector<Ledger::Item> Ledger::Outstanding() const {
    const std::lock_guard lock(lock_);
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

std::vector<std::string> Ledger::Misuse() const {
    const std::lock_guard lock(lock_);
    return misuse_;
}

std::set<Ledger::Key> Ledger::Excused() const {
    const std::lock_guard lock(lock_);
    return excused_;
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
    for (const std::string& misuse : Misuse()) {
        report += "misuse: " + misuse + "\n";
    }
    return report;
}

void Ledger::HandOut(std::string_view kind, std::uintptr_t identity, std::string origin) {
    const std::lock_guard lock(lock_);
    const auto [place, isNew] = items_.try_emplace(Key(kind, identity));
    if (isNew) {
        place->second = {{std::string(kind), std::move(origin), identity, 1}, nextOrder_++};
    } else {
        ++place->second.item.count;
    }
}

bool Ledger::TakeBack(std::string_view kind, std::uintptr_t identity) {
    const std::lock_guard lock(lock_);
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
    const std::lock_guard lock(lock_);
    const Key key(kind, identity);
    return items_.contains(key) || excused_.contains(key);
}

void Ledger::Excuse(std::string_view kind, std::uintptr_t identity) {
    const std::lock_guard lock(lock_);
    if (items_.erase(Key(kind, identity)) != 0) {
        excused_.emplace(kind, identity);
    }
}

void Ledger::RecordMisuse(std::string what) {
    const std::lock_guard lock(lock_);
    misuse_.push_back(std::move(what));
}

void Ledger::Clear() {
    const std::lock_guard lock(lock_);
    items_.clear();
    misuse_.clear();
}

}  // namespace machine
