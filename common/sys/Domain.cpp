#include "common/sys/Domain.h"

#include "common/err/GeneralError.h"
#include "common/sys/DomainSystem.h"
#include "common/sys/WmiMethods.h"
#include "common/sys/WmiQueries.h"
#include "common/util/Strings.h"

namespace sys {

namespace {

// Messages are searched for as they are: the blanks at their beginnings and ends belong to them.

/// Throws unless a join or unjoin has worked: 0, or 1 where a restart completes it.
void CheckJoinResult(std::uint32_t result, const char* message, std::int32_t category) {
    if (result != 0 && result != 1) {
        const auto code = static_cast<std::int32_t>(result);
        throw DomainError(message, code < 0 ? 735 : 728, category, code);
    }
}

constexpr const char* kLdap = "LDAP://";
constexpr const char* kComputers = "CN=Computers";  // where a domain keeps computers by default

/// The computer object, where it is now.
std::string SourcePath(const std::string& computer, const std::string& unit,
                       const std::string& unitDn) {
    std::string name = computer.empty() ? "" : "CN=" + computer;
    if (unit.empty()) {
        name += (name.empty() ? "" : ",") + std::string(kComputers);
    }
    if (!unitDn.empty()) {
        name += "," + unitDn;
    }
    return kLdap + name;
}

/// The container that it is to move to.
std::string DestinationPath(const std::string& unit, const std::string& unitDn) {
    std::string name = unit.empty() ? kComputers : "";
    if (!unitDn.empty()) {
        name += (name.empty() ? "" : ",") + unitDn;
    }
    return kLdap + name;
}

}  // namespace

Domain::~Domain() {
    ForgetPassword();
}

void Domain::SetAccount(const std::string& user, const std::string& password) {
    ForgetPassword();
    user_ = user;
    password_ = password;
}

void Domain::ForgetPassword() noexcept {
    util::SecureErase(password_);
}

bool Domain::IsDomainMember() {
    if (!skipRefresh_) {
        ReadMembership({member_, domain_, dnsDomain_, workgroup_});
    }
    return member_;
}

void Domain::BuildAccount(const std::string& domain) {
    account_ = domain;
    if (!account_.empty()) {
        account_ += '\\';
    }
    account_ += user_;
}

void Domain::BuildCurrentAccount() {
    BuildAccount(dnsDomain_.empty() ? domain_ : dnsDomain_);
}

const std::string& Domain::GetOu(std::string& out, bool asDn) {
    out.clear();
    if (!IsDomainMember()) {
        out = ou_;
        return out;
    }
    BuildCurrentAccount();
    ou_.clear();
    ExtractOuPath(ReadComputerObjectName(), ou_, asDn);
    out = ou_;
    return out;
}

std::uint8_t Domain::JoinWorkgroup(const std::string& name) {
    std::uint32_t unjoined = 0;
    if (IsDomainMember() && !user_.empty()) {
        BuildCurrentAccount();
        unjoined = unjoinDomainOrWorkgroup(account_, password_, 0);
        CheckJoinResult(unjoined, " - JoinWorkgroup error (unjoining domain)", 0);
    }
    const std::uint32_t joined = joinDomainOrWorkgroup(name, user_, password_, {}, 0);
    CheckJoinResult(joined, " - JoinWorkgroup error", 0);
    return static_cast<std::uint8_t>(unjoined != 0 ? unjoined : joined);
}

std::uint8_t Domain::JoinDomainAndOu(const std::string& domain, const std::string& ou,
                                     bool option) {
    constexpr std::int32_t kJoinDomain = 0x1;
    constexpr std::int32_t kCreateAccount = 0x2;
    constexpr std::int32_t kJoinIfJoined = 0x20;
    constexpr std::int32_t kOption = 0x100;
    constexpr const char* kFailure = " - JoinDomainAndOu error";

    std::string unitDn;
    if (!ou.empty()) {
        BuildDn(domain, ou, unitDn);
    }
    BuildAccount(domain);
    std::int32_t flags = IsDomainMember() ? kJoinDomain | kJoinIfJoined : kJoinDomain;
    if (option) {
        flags |= kOption;
    }
    std::uint32_t result = joinDomainOrWorkgroup(domain, account_, password_, unitDn, flags);
    try {
        CheckJoinResult(result, kFailure, 2);
    } catch (const DomainError&) {
        // There may be no computer account yet: once more, creating it.
        result = joinDomainOrWorkgroup(domain, account_, password_, unitDn, flags + kCreateAccount);
        CheckJoinResult(result, kFailure, 2);
    }
    return static_cast<std::uint8_t>(result);
}

bool Domain::MoveOu(const std::string& destination) {
    if (!IsDomainMember()) {
        return false;
    }
    std::string current;
    GetOu(current, true);
    std::string computer;
    getComputerName(computer);

    std::string currentDn;
    std::string destinationDn;
    BuildDn(dnsDomain_, current, currentDn);
    BuildDn(dnsDomain_, destination, destinationDn);
    std::int32_t result = 0;
    const char* const failure = MoveComputerObject(SourcePath(computer, current, currentDn),
                                                   DestinationPath(destination, destinationDn),
                                                   account_, password_, result);
    if (failure != nullptr) {
        throw DomainError(failure, 469, 1, result);
    }
    return false;  // also when the object was moved
}

}  // namespace sys
