#include "common/config/command/MoveOu.h"

#include "common/sys/Domain.h"
#include "common/util/Strings.h"

namespace config::command {

bool MoveOu::IsNeeded() {
    sys::Domain& domain = sys::getDomain();
    if (!domain.IsDomainMember() || (UserName().empty() && unit_.empty())) {
        return false;
    }
    UseAccount();
    std::string currentUnit;
    domain.GetOu(currentUnit, false);
    std::string wanted;
    std::string current;
    sys::Domain::BuildDn(domain.DnsDomainName(), unit_, wanted);
    sys::Domain::BuildDn(domain.DnsDomainName(), currentUnit, current);
    return !util::NoCaseEqual(wanted, current);
}

void MoveOu::Execute() {
    UseAccount();
    sys::getDomain().MoveOu(unit_);
}

std::string MoveOu::GetDescription() {
    return "OU=" + unit_;
}

}  // namespace config::command
