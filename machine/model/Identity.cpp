#include "machine/model/Identity.h"

#include <algorithm>

#include "machine/Text.h"
#include "machine/model/Directory.h"
#include "machine/model/Names.h"

namespace machine::model {
namespace {

/// Whether the account may change computer accounts of the domain.
std::uint32_t CheckCredentials(Domain* domain, const Credentials& credentials,
                               Account** found = nullptr) {
    if (domain == nullptr || !domain->reachable) {
        return kNoSuchDomain;
    }
    Account* account = Authenticate(*domain, credentials.userName, credentials.password);
    // Platform knowledge: one account at a time may be connected to a server.
    if (domain->connectedAs &&
        (account == nullptr || !EqualNoCase(*domain->connectedAs, account->name))) {
        return kWrongSession;
    }
    if (account == nullptr) {
        return kWrongCredentials;
    }
    if (found != nullptr) {
        *found = account;
    }
    return account->mayJoin ? kDone : kNotAllowed;
}

// Documented (KB 5020276): since October 2022 an account of the directory does not take over a
// computer object that another one made, unless it is trusted to.
bool MayReuse(const Domain& domain, const Account& account, const std::string& computer) {
    const auto owner = std::ranges::find_if(domain.owners, [&computer](const ObjectOwner& one) {
        return EqualNoCase(one.computer, computer);
    });
    return owner == domain.owners.end() || account.mayReuse ||
           EqualNoCase(owner->account, account.name);
}

std::uint32_t CreateComputer(Domain& domain, TextList& unit, Account& account,
                             const std::string& computer) {
    if (account.quota) {
        if (*account.quota == 0) {
            return kQuotaExceeded;  // documented; ten objects for each user by default
        }
        --*account.quota;
    }
    unit.push_back(computer);
    domain.owners.push_back({computer, account.name});
    return kDone;
}

/// Makes sure that the domain has the computer's account.
std::uint32_t ProvideAccount(State& state, Domain& domain, Account& account,
                             const std::string& computer, const std::string& accountOu,
                             bool create) {
    const auto existing = FindComputer(domain, computer);
    if (existing && !MayReuse(domain, account, computer)) {
        return kReuseRefused;
    }
    if (!create) {
        return existing ? kDone : kNoAccountMapped;  // documented
    }
    Container unit{&domain, &domain.computers};
    if (!accountOu.empty() && (FindContainerByDn(state, accountOu, unit) != kDirectoryOk ||
                               unit.computers == nullptr || unit.domain != &domain)) {
        return kUnitNotFound;
    }
    if (existing) {
        return accountOu.empty() || existing->container == unit.computers ? kDone : kAccountExists;
    }
    return CreateComputer(domain, *unit.computers, account, computer);
}

std::uint32_t JoinWorkgroup(State& state, const std::string& name) {
    if (!IsNetBiosName(name)) {
        return kInvalidWorkgroup;
    }
    if (ShownMembership(state).member) {
        return kAlreadyJoined;
    }
    state.pendingMembership = Membership::OfWorkgroup(name);
    return kDone;
}

}  // namespace

const Membership& ShownMembership(const State& state) {
    // Documented for a workgroup (MS-WKST 3.2.4.13.4): the call writes name and SID of the policy.
    // Platform knowledge: so do those that join and leave a domain.
    return state.pendingMembership ? *state.pendingMembership : state.membership;
}

std::string NetBiosName(std::string_view hostName) {
    std::string name(hostName.substr(0, kLongestNetBiosName));
    for (char& c : name) {
        if (c >= 'a' && c <= 'z') {
            c = static_cast<char>(c - 'a' + 'A');
        }
    }
    return name;
}

std::uint32_t Rename(State& state, const std::string& newName, const Credentials& credentials) {
    if (!state.system.elevated) {
        return kNotAllowed;  // documented, of all three methods
    }
    if (!IsHostName(newName)) {
        return kInvalidComputerName;
    }
    if (state.membership.member) {
        Domain* domain = FindDomain(state, state.membership.dnsDomain);
        if (credentials.userName.empty()) {
            return kNotAllowed;  // the machine's own account may not rename itself
        }
        if (const auto code = CheckCredentials(domain, credentials); code != kDone) {
            return code;
        }
        const std::string current =
            NetBiosName(state.pendingComputerName.value_or(state.computerName));
        const std::string coming = NetBiosName(newName);
        const auto own = FindComputer(*domain, current);
        if (coming != current && FindComputer(*domain, coming)) {
            return kAccountExists;
        }
        if (!own) {
            return kNoSuchComputerAccount;
        }
        (*own->container)[own->position] = coming;
        for (ObjectOwner& owner : domain->owners) {
            if (EqualNoCase(owner.computer, current)) {
                owner.computer = coming;
            }
        }
    }
    state.pendingComputerName = newName;
    return kDone;
}

std::uint32_t Join(State& state, const std::string& name, const Credentials& credentials,
                   const std::string& accountOu, std::uint32_t options) {
    if (!state.system.elevated) {
        return kNotAllowed;
    }
    if ((options & ~static_cast<std::uint32_t>(kAllJoinOptions)) != 0) {
        return kWrongOptions;
    }
    if (!state.system.workstationService) {
        return kNoWorkstationService;  // documented
    }
    if ((options & kJoinDomain) == 0) {
        return JoinWorkgroup(state, name);
    }
    if (ShownMembership(state).member && (options & kJoinIfJoined) == 0) {
        return kAlreadyJoined;
    }
    Domain* domain = FindDomain(state, name);
    if (domain != nullptr && domain->joinAnswer != kDone) {
        return domain->joinAnswer;
    }
    Account* account = nullptr;
    if (const auto code = CheckCredentials(domain, credentials, &account); code != kDone) {
        return code;
    }
    const bool newName = (options & kJoinWithNewName) != 0 && state.pendingComputerName;
    const std::string computer =
        NetBiosName(newName ? *state.pendingComputerName : state.computerName);
    const bool create = (options & kCreateAccount) != 0;
    if (const auto code = ProvideAccount(state, *domain, *account, computer, accountOu, create);
        code != kDone) {
        return code;
    }
    state.pendingMembership = Membership::OfDomain(domain->flatName, domain->dnsName);
    return kDone;
}

std::uint32_t Unjoin(State& state, const Credentials& credentials, std::uint32_t options) {
    if (!state.system.elevated) {
        return kNotAllowed;
    }
    if (!state.system.workstationService) {
        return kNoWorkstationService;  // documented
    }
    const Membership& coming = ShownMembership(state);
    if (!coming.member) {
        return kNotJoined;
    }
    // Documented: the only option, kDeleteAccount, disables the computer object and deletes
    // nothing.
    if (options != 0 && options != kDeleteAccount) {
        return kWrongOptions;
    }
    // Platform knowledge. Without an account the machine leaves on its own and its computer object
    // stays enabled.
    if (!credentials.userName.empty() || options == kDeleteAccount) {
        Domain* domain = FindDomain(state, coming.dnsDomain);
        if (const auto code = CheckCredentials(domain, credentials); code != kDone) {
            return code;
        }
    }
    // Platform knowledge: a machine that leaves is in this workgroup.
    state.pendingMembership = Membership::OfWorkgroup("WORKGROUP");
    return kDone;
}

}  // namespace machine::model
