#include "machine/model/Identity.h"

#include <algorithm>

#include "machine/Text.h"
#include "machine/model/Directory.h"
#include "machine/model/Names.h"

namespace machine::model {
namespace {

// The membership that the machine will have: joins and leaves that wait for a restart count.
const Membership& ComingMembership(const State& state) {
    return state.pendingMembership ? *state.pendingMembership : state.membership;
}

// Whether the account may change computer accounts of the domain.
std::uint32_t CheckCredentials(const Domain* domain, const Credentials& credentials) {
    if (domain == nullptr || !domain->reachable) {
        return NoSuchDomain;
    }
    const Account* account = Authenticate(*domain, credentials.userName, credentials.password);
    if (account == nullptr) {
        return WrongCredentials;
    }
    return account->mayJoin ? Done : NotAllowed;
}

// Makes sure that the domain has the computer's account.
std::uint32_t ProvideAccount(State& state, Domain& domain, const std::string& computer,
                             const std::string& accountOu, bool create) {
    const auto existing = FindComputer(domain, computer);
    if (!create) {
        return existing ? Done : NoSuchComputerAccount;
    }
    Container unit{&domain, &domain.computers};
    if (!accountOu.empty() && (FindContainerByDn(state, accountOu, unit) != DirectoryOk ||
                               unit.computers == nullptr || unit.domain != &domain)) {
        return UnitNotFound;
    }
    if (existing) {
        return accountOu.empty() || existing->container == unit.computers ? Done : AccountExists;
    }
    unit.computers->push_back(computer);
    return Done;
}

std::uint32_t JoinWorkgroup(State& state, const std::string& name) {
    if (!IsNetBiosName(name)) {
        return InvalidWorkgroup;
    }
    if (ComingMembership(state).member) {
        return AlreadyJoined;
    }
    state.pendingMembership = Membership::OfWorkgroup(name);
    return Done;
}

}  // namespace

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
    if (!IsHostName(newName)) {
        return InvalidComputerName;
    }
    if (state.membership.member) {
        Domain* domain = FindDomain(state, state.membership.dnsDomain);
        if (credentials.userName.empty()) {
            return NotAllowed;  // the machine's own account may not rename itself
        }
        if (const auto code = CheckCredentials(domain, credentials); code != Done) {
            return code;
        }
        const std::string current =
            NetBiosName(state.pendingComputerName.value_or(state.computerName));
        const std::string coming = NetBiosName(newName);
        const auto own = FindComputer(*domain, current);
        if (coming != current && FindComputer(*domain, coming)) {
            return AccountExists;
        }
        if (!own) {
            return NoSuchComputerAccount;
        }
        (*own->container)[own->position] = coming;
    }
    state.pendingComputerName = newName;
    return Done;
}

std::uint32_t Join(State& state, const std::string& name, const Credentials& credentials,
                   const std::string& accountOu, std::uint32_t options) {
    if ((options & ~static_cast<std::uint32_t>(AllJoinOptions)) != 0) {
        return WrongOptions;
    }
    if ((options & JoinDomain) == 0) {
        return JoinWorkgroup(state, name);
    }
    if (ComingMembership(state).member && (options & JoinIfJoined) == 0) {
        return AlreadyJoined;
    }
    Domain* domain = FindDomain(state, name);
    if (const auto code = CheckCredentials(domain, credentials); code != Done) {
        return code;
    }
    const bool newName = (options & JoinWithNewName) != 0 && state.pendingComputerName;
    const std::string computer =
        NetBiosName(newName ? *state.pendingComputerName : state.computerName);
    const bool create = (options & CreateAccount) != 0;
    if (const auto code = ProvideAccount(state, *domain, computer, accountOu, create);
        code != Done) {
        return code;
    }
    state.pendingMembership = Membership::OfDomain(domain->flatName, domain->dnsName);
    return Done;
}

std::uint32_t Unjoin(State& state, const Credentials& credentials, std::uint32_t options) {
    const Membership& coming = ComingMembership(state);
    if (!coming.member) {
        return NotJoined;
    }
    if (options != 0 && options != DeleteAccount) {
        return WrongOptions;
    }
    // Without an account the machine leaves on its own and its computer object stays enabled.
    if (!credentials.userName.empty() || options == DeleteAccount) {
        Domain* domain = FindDomain(state, coming.dnsDomain);
        if (const auto code = CheckCredentials(domain, credentials); code != Done) {
            return code;
        }
    }
    state.pendingMembership = Membership::OfWorkgroup("WORKGROUP");
    return Done;
}

}  // namespace machine::model
