#include "common/config/command/JoinDomain.h"

#include "common/sys/Domain.h"
#include "common/util/Strings.h"

namespace config::command {

bool JoinDomain::IsNeeded() {
    if (dnsDomain_.empty() && windowsDomain_.empty()) {
        return false;
    }
    if (!domain_.IsDomainMember()) {
        return true;  // its names may still be those from before somebody else unjoined it
    }
    const bool isDnsDomain =
        !dnsDomain_.empty() && util::NoCaseEqual(dnsDomain_, domain_.DnsDomainName());
    const bool isWindowsDomain =
        !windowsDomain_.empty() && util::NoCaseEqual(windowsDomain_, domain_.DomainName());
    return !isDnsDomain && !isWindowsDomain;
}

void JoinDomain::Execute() {
    UseAccount(domain_);
    domain_.JoinDomainAndOu(dnsDomain_, unit_, option_ != 0);
}

std::string JoinDomain::GetDescription() {
    return "DNS Domain=" + dnsDomain_ + ", Windows Domain=" + windowsDomain_ + " " + AccountText();
}

}  // namespace config::command
