#pragma once

#include <string>

#include "common/config/command/IConfigureCommand.h"

namespace sys {
class Domain;
}

namespace config::command {

/// Base of the commands that change the machine's name or membership: the account they use.
class DomainCommand : public IConfigureCommand {
public:
    void Reserved() override {}
    ~DomainCommand() override;

    void SetUserName(const std::string& userName) { userName_ = userName; }
    /// Clear text; overwritten when the command is destroyed.
    void SetPassword(const std::string& password);

protected:
    const std::string& UserName() const noexcept { return userName_; }
    const std::string& Password() const noexcept { return password_; }

    /// The account as a description shows it: its name, never its password.
    std::string AccountText() const;

    /// Makes the account the one that `domain` works with.
    void UseAccount(sys::Domain& domain) const;

private:
    std::string userName_;
    std::string password_;
};

}  // namespace config::command
