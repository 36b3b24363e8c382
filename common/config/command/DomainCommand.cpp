#include "common/config/command/DomainCommand.h"

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

void DomainCommand::UseAccount() const {
    sys::getDomain().SetAccount(userName_, password_);
}

}  // namespace config::command
