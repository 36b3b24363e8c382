#pragma once

#include <cstddef>
#include <string_view>

#include "host/check/Finding.h"
#include "host/reading/File.h"

namespace host::check {

/// What is wrong with the file's shape, whatever its settings are: marks and bytes that the module
/// does not expect, lines that it takes for something else, sections and keys that it does not
/// know, and keys that stand there twice.
class StructureCheck {
public:
    StructureCheck(const reading::File& file, Findings& findings)
        : file_(file), findings_(findings) {}

    /// False when the file is no text that the module could read (UTF-16): then there is nothing
    /// else to say about it.
    bool CheckEncoding();
    void CheckLines();
    void CheckHeaders();
    void CheckKeys();

private:
    bool CheckBytes();
    void CheckForUtf8();
    void CheckCarriageReturn(std::size_t number);
    void CheckContinuations(const IniFile::Line& line, std::size_t last);
    void CheckHeader(const IniFile::Line& line);
    void CheckSectionName(std::string_view name);
    void CheckEntry(const reading::Section& section, const reading::Entry& entry);
    void CheckValueText(std::string_view value);

    const reading::File& file_;
    Findings& findings_;
};

}  // namespace host::check
