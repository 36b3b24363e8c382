#include "host/configure/Sections.h"

#include <algorithm>

#include "common/util/Strings.h"
#include "host/configure/Values.h"

namespace host::configure {

namespace {

/// What a later pass repeats of an earlier one.
bool IsOldNews(const Row& row) {
    switch (row.fate) {
        case Fate::kAlreadySet:
        case Fate::kLabel:
        case Fate::kLeftAlone:
        case Fate::kIgnored:
            return true;
        default:
            return false;
    }
}

}  // namespace

std::vector<SectionRows> GroupBySection(const std::vector<Row>& rows) {
    std::vector<SectionRows> sections;
    for (const Row& row : rows) {
        const std::string& name = row.setting.at.section;
        auto section = std::find_if(
            sections.rbegin(), sections.rend(),
            [&name](const SectionRows& known) { return util::NoCaseEqual(known.name, name); });
        if (section == sections.rend()) {
            sections.push_back({name, nullptr, nullptr, {}});
            section = sections.rbegin();
        }
        if (row.setting.kind == Setting::Kind::kAdapter) {
            section->adapter = &row;
        } else if (row.setting.kind == Setting::Kind::kUnused && row.setting.at.key.empty()) {
            section->unread = &row;
        } else {
            section->rows.push_back(&row);
        }
    }
    return sections;
}

std::vector<SectionRows> GroupNewsBySection(const std::vector<Row>& rows) {
    std::vector<SectionRows> sections = GroupBySection(rows);
    for (SectionRows& section : sections) {
        std::erase_if(section.rows, [](const Row* row) { return IsOldNews(*row); });
    }
    std::erase_if(sections, [](const SectionRows& section) { return section.rows.empty(); });
    return sections;
}

std::string HeadingOf(const SectionRows& section) {
    std::string heading = "[" + section.name + "]";
    if (section.adapter != nullptr) {
        const Row& row = *section.adapter;
        heading += " " + ListText(row.wanted) +
                   (row.adapter.empty() ? ", no adapter: " + row.reason : ", on " + row.adapter);
    }
    if (section.unread != nullptr) {
        const std::size_t keys = section.unread->setting.keys.size();
        heading += " " + std::to_string(keys) + (keys == 1 ? " key: " : " keys: ") +
                   section.unread->reason;
    }
    return heading;
}

}  // namespace host::configure
