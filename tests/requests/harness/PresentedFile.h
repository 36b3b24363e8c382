// The configuration file of a request: where the agent has it and what became of it.
#pragma once

#include <filesystem>
#include <string>

#include "tests/requests/harness/ModuleRun.h"

namespace requests {

class PresentedFile {
public:
    enum class Stands { kInbox, kHome, kNowhere };

    PresentedFile(const AgentFolder& agent, std::string name, std::string text,
                  Stands stands = Stands::kInbox);

    /// Puts the file where it stands before a request, whatever became of it in an earlier one.
    /// Gives its path.
    std::string Present() const;

    /// Where a file of that name lies when it is put away.
    const std::filesystem::path& Home() const { return home_; }

    /// "kept" in the inbox, "put away", "in both places", "changed" or "gone".
    std::string WhereIsIt() const;

private:
    std::string text_;
    Stands stands_;
    std::filesystem::path inbox_;
    std::filesystem::path home_;
};

}  // namespace requests
