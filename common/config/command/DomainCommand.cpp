#include "common/config/command/DomainCommand.h"

#include "common/logging/Phrases.h"
#include "common/sys/Domain.h"
#include "common/util/Strings.h"

namespace config::command {

DomainCommand::~DomainCommand() {
    util::SecureErase(password_);
}

void DomainCommand::SetPassword(const std::string& password) {
    util::SecureErase(password_);
    password_ = password;
}

std::string DomainCommand::AccountText() const {
    return logging::kAccount + userName_ + "}";
}

void DomainCommand::UseAccount(sys::Domain& domain) const {
    domain.SetAccount(userName_, password_);
}

}  // namespace config::command
