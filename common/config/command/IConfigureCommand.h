#pragma once

#include <memory>
#include <string>
#include <typeinfo>
#include <vector>

namespace config::command {

/// One change to the machine. Created by the builder's rules, pruned and completed by the analyzer,
/// executed once in list order, never rolled back. A command owns everything it holds.
class IConfigureCommand {
public:
    /// Performs the change. A failure is thrown: ConfigError or an error of the layer it calls.
    virtual void Execute() = 0;
    /// Does nothing in every command and is called by nothing; it keeps its slot.
    virtual void Reserved() = 0;
    /// False when the command has nothing to do.
    virtual bool IsNeeded() = 0;
    /// The command's parameters for a log line, as they are: whoever logs them doubles the "%".
    /// Never a password.
    virtual std::string GetDescription() = 0;
    virtual ~IConfigureCommand() = default;

    IConfigureCommand() = default;
    IConfigureCommand(const IConfigureCommand&) = delete;
    IConfigureCommand& operator=(const IConfigureCommand&) = delete;
};

using CommandList = std::vector<std::unique_ptr<IConfigureCommand>>;

/// The command as that class when its run-time class is that class itself, not one derived from it;
/// else null. `command` may be null.
template <typename Command>
Command* ExactCast(IConfigureCommand* command) {
    return command != nullptr && typeid(*command) == typeid(Command)
               ? static_cast<Command*>(command)
               : nullptr;
}

}  // namespace config::command
