#include "machine/model/Identity.h"

#include <algorithm>

#include "machine/Text.h"
#include "machine/model/Directory.h"
#include "machine/model/Names.h"

namespace machine::model {
namespace {

/// The membership that the machine will have: joins and leaves that wait for a restart count.
const Membership& ComingMembership(const State& state) {
    return state.pendingMembership ? *state.pendingMembership : state.membership;
}

/// Whether the account may change computer accounts of the domain.
std::uint32_t CheckCredentials(const Domain* domain, const Credentials& credentials) {
    if (domain == nullptr || !domain->reachable) {
        return kNoSuchDomain;
    }
    const Account* account = Authenticate(*domain, credentials.userName, credentials.password);
    if (account == nullptr) {
        return kWrongCredentials;
    }
    return account->mayJoin ? kDone : kNotAllowed;
}

/// Makes sure that the domain has the computer's account.
std::uint32_t ProvideAccount(State& state, Domain& domain, const std::string& computer,
                             const std::string& accountOu, bool create) {
    const auto existing = FindComputer(domain, computer);
    if (!create) {
        return existing ? kDone : kNoSuchComputerAccount;
    }
    Container unit{&domain, &domain.computers};
    if (!accountOu.empty() && (FindContainerByDn(state, accountOu, unit) != kDirectoryOk ||
                               unit.computers == nullptr || unit.domain != &domain)) {
        return kUnitNotFound;
    }
    if (existing) {
        return accountOu.empty() || existing->container == unit.computers ? kDone : kAccountExists;
    }
    unit.computers->push_back(computer);
    return kDone;
}

std::uint32_t JoinWorkgroup(State& state, const std::string& name) {
    if (!IsNetBiosName(name)) {
        return kInvalidWorkgroup;
    }
    if (ComingMembership(state).member) {
        return kAlreadyJoined;
    }
    state.pendingMembership = Membership::OfWorkgroup(name);
    return kDone;
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
    }
    state.pendingComputerName = newName;
    return kDone;
}

std::uint32_t Join(State& state, const std::string& name, const Credentials& credentials,
                   const std::string& accountOu, std::uint32_t options) {
    if ((options & ~static_cast<std::uint32_t>(kAllJoinOptions)) != 0) {
        return kWrongOptions;
    }
    if ((options & kJoinDomain) == 0) {
        return JoinWorkgroup(state, name);
    }
    if (ComingMembership(state).member && (options & kJoinIfJoined) == 0) {
        return kAlreadyJoined;
    }
    Domain* domain = FindDomain(state, name);
    if (const auto code = CheckCredentials(domain, credentials); code != kDone) {
        return code;
    }
    const bool newName = (options & kJoinWithNewName) != 0 && state.pendingComputerName;
    const std::string computer =
        NetBiosName(newName ? *state.pendingComputerName : state.computerName);
    const bool create = (options & kCreateAccount) != 0;
    if (const auto code = ProvideAccount(state, *domain, computer, accountOu, create);
        code != kDone) {
        return code;
    }
    state.pendingMembership = Membership::OfDomain(domain->flatName, domain->dnsName);
    return kDone;
}

std::uint32_t Unjoin(State& state, const Credentials& credentials, std::uint32_t options) {
    const Membership& coming = ComingMembership(state);
    if (!coming.member) {
        return kNotJoined;
    }
    if (options != 0 && options != kDeleteAccount) {
        return kWrongOptions;
    }
    // Without an account the machine leaves on its own and its computer object stays enabled.
    if (!credentials.userName.empty() || options == kDeleteAccount) {
        Domain* domain = FindDomain(state, coming.dnsDomain);
        if (const auto code = CheckCredentials(domain, credentials); code != kDone) {
            return code;
        }
    }
    state.pendingMembership = Membership::OfWorkgroup("WORKGROUP");
    return kDone;
}

}  // namespace machine::model
