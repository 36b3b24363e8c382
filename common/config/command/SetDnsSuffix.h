#pragma once

#include <string>
#include <vector>

#include "common/config/command/NicCommand.h"

namespace config::command {

/// Sets the DNS suffix search order. It is compared with the adapter's list, but the method belongs
/// to the class: the list becomes the machine's.
class SetDnsSuffix : public NicCommand {
public:
    void Add(const std::string& suffix) { suffixes_.push_back(suffix); }

    void Execute() override;
    /// Compares with case: suffixes that differ in letter case alone are set again.
    bool IsNeeded() override;
    std::string GetDescription() override;

private:
    std::vector<std::string> suffixes_;
};

}  // namespace config::command
