#include "common/config/command/JoinWorkgroup.h"

#include "common/sys/Domain.h"
#include "common/util/Strings.h"

namespace config::command {

bool JoinWorkgroup::IsNeeded() {
    if (name_.empty()) {
        return false;
    }
    sys::Domain& domain = sys::getDomain();
    // A member has no workgroup; the name would be one from before it joined.
    return domain.IsDomainMember() || !util::NoCaseEqual(name_, domain.Workgroup());
}

void JoinWorkgroup::Execute() {
    UseAccount();
    sys::getDomain().JoinWorkgroup(name_);
}

std::string JoinWorkgroup::GetDescription() {
    return "Workgroup=" + name_ + " " + AccountText();
}

}  // namespace config::command
