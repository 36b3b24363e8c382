#include "common/config/command/MoveOu.h"

#include "common/sys/Domain.h"
#include "common/util/Strings.h"

namespace config::command {

bool MoveOu::IsNeeded() {
    if (!domain_.IsDomainMember() || (UserName().empty() && unit_.empty())) {
        return false;
    }
    UseAccount(domain_);
    std::string currentUnit;
    domain_.GetOu(currentUnit, false);
    std::string wanted;
    std::string current;
    sys::Domain::BuildDn(domain_.DnsDomainName(), unit_, wanted);
    sys::Domain::BuildDn(domain_.DnsDomainName(), currentUnit, current);
    return !util::NoCaseEqual(wanted, current);
}

void MoveOu::Execute() {
    UseAccount(domain_);
    domain_.MoveOu(unit_);
}

std::string MoveOu::GetDescription() {
    return "OU=" + unit_;
}

}  // namespace config::command
