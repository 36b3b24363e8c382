#pragma once

#include <gtest/gtest.h>

#include <string>

#include "host/check/FileCheck.h"
#include "tests/support/ScratchFile.h"

namespace check_tests {

/// A configuration file of a test, checked.
class Checked {
public:
    explicit Checked(const std::string& text)
        : file_(text, "checked.ini"), checked_(host::check::CheckFile(file_.Path())) {}

    const host::check::Findings& Findings() const { return checked_.findings; }
    const host::reading::File& File() const { return checked_.file; }

    /// "E 3:9 bad-address, W 4:1 unused-key"
    std::string Summary() const {
        std::string summary;
        for (const host::check::Finding& finding : Findings().List()) {
            summary += summary.empty() ? "" : ", ";
            EXPECT_TRUE(finding.code.GetRule().Allows(finding.severity)) << finding.message;
            summary += finding.severity == host::check::Severity::kError ? "E " : "W ";
            summary += std::to_string(finding.place.line) + ":" +
                       std::to_string(finding.place.column) + " ";
            summary += finding.code.Text();
        }
        return summary;
    }

    /// All messages, a line each.
    std::string Messages() const {
        std::string messages;
        for (const host::check::Finding& finding : Findings().List()) {
            messages += finding.message + "\n";
        }
        return messages;
    }

private:
    const support::ScratchFile file_;
    const host::check::CheckedFile checked_;
};

}  // namespace check_tests
