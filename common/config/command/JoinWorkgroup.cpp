#include "common/config/command/JoinWorkgroup.h"

#include "common/sys/Domain.h"
#include "common/util/Strings.h"

namespace config::command {

bool JoinWorkgroup::IsNeeded() {
    if (name_.empty()) {
        return false;
    }
    // Asking refreshes the workgroup's name too.
    return LeavesDomain() || !util::NoCaseEqual(name_, domain_.Workgroup());
}

bool JoinWorkgroup::LeavesDomain() {
    return domain_.IsDomainMember();
}

void JoinWorkgroup::Execute() {
    UseAccount(domain_);
    domain_.JoinWorkgroup(name_);
}

std::string JoinWorkgroup::GetDescription() {
    return "Workgroup=" + name_ + " " + AccountText();
}

}  // namespace config::command
