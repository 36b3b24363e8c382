#pragma once

#include "host/check/Finding.h"
#include "host/check/ModuleReading.h"
#include "host/check/SourceFile.h"

namespace host::check {

/// What is wrong with the file's shape, whatever its settings are: marks and bytes that the module
/// does not expect, lines that it takes for something else, sections and keys that it does not
/// know, and keys that stand there twice.
class StructureCheck {
public:
    StructureCheck(const SourceFile& source, Findings& findings)
        : source_(source), findings_(findings) {}

    /// False when the file is no text that the module could read (UTF-16): then there is nothing
    /// else to say about it.
    bool CheckEncoding();
    void CheckLines();
    void CheckHeaders();
    void CheckKeys(const FirstEntries& entries);

private:
    void CheckCarriageReturn(std::size_t number);
    void CheckContinuations(std::size_t first, std::size_t last);
    void CheckSectionName(std::size_t number);
    void CheckEntry(std::size_t number, SectionRole role, const FirstEntries& entries);
    void CheckValueText(std::size_t number);

    const SourceFile& source_;
    Findings& findings_;
};

}  // namespace host::check
