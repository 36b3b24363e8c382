#pragma once

#include <optional>
#include <string>
#include <vector>

/// The configuration reader once more, as plainly as it can be written: copies everywhere, scans
/// for every look-up.
class NaiveReader {
public:
    struct Entry {
        std::string key;
        std::string value;
    };
    struct Section {
        std::string name;
        std::vector<Entry> entries;
        std::optional<std::size_t> previous;  // the entry that a continuation line continues
    };

    explicit NaiveReader(bool caseSensitiveKeys) : caseSensitiveKeys_(caseSensitiveKeys) {}

    /// False when a merged value replaced another one.
    bool Parse(const std::string& text, bool merge);

    const std::vector<Section>& Sections() const { return sections_; }
    const Section* Find(const std::string& name) const;
    /// The first value of the key.
    std::optional<std::string> Value(const std::string& section, const std::string& key) const;

private:
    std::optional<std::size_t> Position(const Section& section, const std::string& key) const;
    Section& Open(const std::string& name);
    bool TakeKey(Section& section, const Entry& entry, bool merge);

    bool caseSensitiveKeys_;
    std::vector<Section> sections_;
};
