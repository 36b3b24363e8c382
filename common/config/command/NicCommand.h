#pragma once

#include <cstdint>

#include "common/config/command/IConfigureCommand.h"

namespace config::command {

/// Not set: an adapter index, a PCI bus, device or function that nobody has given.
inline constexpr std::uint32_t kNotSet = 0xFFFFFFFF;

/// Base of the commands that change one adapter. ConfigureNic writes the adapter's index just
/// before it executes the command.
class NicCommand : public IConfigureCommand {
public:
    void Reserved() override {}

    /// Index of the adapter in Win32_NetworkAdapterConfiguration.
    void SetNicIndex(std::uint32_t index) noexcept { nicIndex_ = index; }
    std::uint32_t NicIndex() const noexcept { return nicIndex_; }

private:
    std::uint32_t nicIndex_ = kNotSet;
};

}  // namespace config::command
