#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "common/config/command/NicCommand.h"
#include "common/logging/LogSink.h"

namespace config::command {

/// Everything that is to change on one adapter: its place on the PCI bus where it was given, the
/// adapter that the analyzer has found for it, and its commands in order.
class ConfigureNic : public IConfigureCommand {
public:
    /// `log` must outlive the command.
    explicit ConfigureNic(logging::ILogSink& log) : log_(log) {}

    void Append(std::unique_ptr<IConfigureCommand> command) {
        commands_.push_back(std::move(command));
    }
    /// Null when there is none.
    IConfigureCommand* Last() const { return commands_.empty() ? nullptr : commands_.back().get(); }
    CommandList& Commands() noexcept { return commands_; }

    void SetBus(std::uint32_t bus) noexcept { bus_ = bus; }
    void SetDevice(std::uint32_t device) noexcept { device_ = device; }
    void SetFunction(std::uint32_t function) noexcept { function_ = function; }
    void SetNicIndex(std::uint32_t index) noexcept { nicIndex_ = index; }

    std::uint32_t Bus() const noexcept { return bus_; }
    std::uint32_t Device() const noexcept { return device_; }
    std::uint32_t Function() const noexcept { return function_; }
    std::uint32_t NicIndex() const noexcept { return nicIndex_; }

    /// Runs the commands that are needed. Throws ConfigError when no adapter was found.
    void Execute() override;
    void Reserved() override {}
    bool IsNeeded() override { return true; }
    std::string GetDescription() override { return {}; }

private:
    std::uint32_t bus_ = kNotSet;
    std::uint32_t device_ = kNotSet;
    std::uint32_t function_ = kNotSet;
    std::uint32_t nicIndex_ = kNotSet;
    CommandList commands_;
    logging::ILogSink& log_;
};

}  // namespace config::command
