// The configuration reader against a naive one: the same sections in the same order, entries,
// look-ups and results, for one load and for a merging load of the text's second half over its
// first.
#include <cstddef>
#include <cstdint>
#include <string>

#include "common/util/Strings.h"
#include "fuzz/MemoryFile.h"
#include "fuzz/NaiveReader.h"
#include "fuzz/Require.h"
#include "toolbox/config/IniFile.h"

namespace {

const std::string kUntouched = "untouched";

void RequireSameValue(const IniFile& file, const NaiveReader& naive, const std::string& section,
                      const std::string& key) {
    std::string value = kUntouched;
    const std::uint32_t result = file.GetValue(section, key, value);
    const std::optional<std::string> expected = naive.Value(section, key);
    if (expected) {
        REQUIRE(result == IniFile::kSuccess);
        REQUIRE(value == *expected);
    } else {
        REQUIRE(result == (naive.Find(section) != nullptr ? IniFile::kKeyNotFound
                                                          : IniFile::kSectionNotFound));
        REQUIRE(value == kUntouched);
    }
}

std::string OtherCase(std::string text) {
    for (char& byte : text) {
        if (util::IsLetter(byte)) {
            byte = static_cast<char>(byte ^ 0x20);
        }
    }
    return text;
}

void RequireSameSection(const IniFile& file, const NaiveReader& naive,
                        const NaiveReader::Section& section) {
    const std::vector<IniFile::Entry>* const entries = file.Entries(section.name);
    REQUIRE(entries != nullptr);
    REQUIRE(entries->size() == section.entries.size());
    for (std::size_t i = 0; i < entries->size(); ++i) {
        REQUIRE((*entries)[i].key == section.entries[i].key);
        REQUIRE((*entries)[i].value == section.entries[i].value);
        RequireSameValue(file, naive, section.name, section.entries[i].key);
        RequireSameValue(file, naive, OtherCase(section.name), OtherCase(section.entries[i].key));
        RequireSameValue(file, naive, section.name, section.entries[i].value);
    }
    RequireSameValue(file, naive, section.name, "");
}

void RequireSame(IniFile& file, const NaiveReader& naive) {
    std::string name = kUntouched;
    std::uint32_t result = file.GetFirstSection(name);
    for (const NaiveReader::Section& section : naive.Sections()) {
        REQUIRE(result == IniFile::kSuccess);
        REQUIRE(name == section.name);
        RequireSameSection(file, naive, section);
        result = file.GetNextSection(name);
    }
    REQUIRE(result == IniFile::kSectionNotFound);
    REQUIRE(name == (naive.Sections().empty() ? kUntouched : naive.Sections().back().name));
    RequireSameValue(file, naive, "Networking", "ComputerName");
}

void Load(IniFile& file, NaiveReader& naive, const std::string& text, bool merge) {
    const MemoryFile memory(text);
    const std::uint32_t result = file.Load(memory.Path(), merge);
    if (text.empty()) {
        REQUIRE(result == IniFile::kFileError);
    } else {
        REQUIRE(result == (naive.Parse(text, merge) ? IniFile::kSuccess : IniFile::kValueReplaced));
    }
    RequireSame(file, naive);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    for (const bool caseSensitiveKeys : {false, true}) {
        IniFile file(caseSensitiveKeys);
        NaiveReader naive(caseSensitiveKeys);
        Load(file, naive, text, false);
        Load(file, naive, text.substr(0, size / 2), false);
        Load(file, naive, text.substr(size / 2), true);
    }
    return 0;
}
