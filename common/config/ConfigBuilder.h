#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <string>

#include "common/config/BuilderRule.h"
#include "common/config/Event.h"
#include "common/config/command/IConfigureCommand.h"
#include "common/logging/LogSink.h"
#include "common/sys/Domain.h"

namespace config {

/// Turns the stream of configuration events into an ordered list of commands, and runs it. One
/// builder serves one request: construct, ConfigEvent for every event, Analyze, RunConfig.
class ConfigBuilder {
public:
    /// `log` must outlive the builder.
    explicit ConfigBuilder(logging::ILogSink& log);
    /// Destroys the commands in list order, then the rules from the top of the stack down.
    ~ConfigBuilder();
    ConfigBuilder(const ConfigBuilder&) = delete;
    ConfigBuilder& operator=(const ConfigBuilder&) = delete;

    /// Takes one event. Throws ConfigError for an event that makes no sense where it stands, and
    /// what asking the system or resolving a host name throws.
    void ConfigEvent(std::uint32_t kind, std::uint32_t type, std::string value);

    /// For the rules and their commands: the machine's membership, as this request sees it.
    sys::Domain& Domain() noexcept { return domain_; }

    /// For the rules: appends a command; the order of appending is the order of execution.
    void AppendCommand(std::unique_ptr<command::IConfigureCommand> command);
    /// Null when the list is empty.
    command::IConfigureCommand* LastCommand() const;

    /// For the analyzer, which works on the list in place.
    command::CommandList& Commands() noexcept { return commands_; }

    /// Runs the commands in order. True, with `reboot` false: every command ran. False, with
    /// `reboot` true: the run stopped at the marker. What a command throws leaves `reboot` as it
    /// was.
    bool RunConfig(bool& reboot);

private:
    template <typename Rule>
    void OpenScope();
    void CloseScope();

    sys::Domain domain_;  // used by commands
    command::CommandList commands_;
    std::deque<std::unique_ptr<BuilderRule>> rules_;  // the last one is the current scope
    logging::ILogSink& log_;
};

}  // namespace config
