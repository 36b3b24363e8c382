#include "common/sys/Domain.h"

// In the order in which they need each other.
#include <windows.h>

#include <oleauto.h>

#include <activeds.h>
#include <lm.h>
#include <ntsecapi.h>

#define SECURITY_WIN32
#include <security.h>

#include <vector>

#include "common/err/GeneralError.h"
#include "common/lang/Handle.h"
#include "common/sys/ComPointers.h"
#include "common/sys/WmiMethods.h"
#include "common/sys/WmiQueries.h"
#include "common/util/Strings.h"
#include "common/util/WideText.h"

namespace sys {

namespace {

struct LsaPolicyTraits {
    using Type = LSA_HANDLE;
    static Type None() noexcept { return nullptr; }
    static void Close(Type handle) noexcept { LsaClose(handle); }
};
using LsaPolicy = lang::UniqueHandle<LsaPolicyTraits>;

struct LsaBufferTraits {
    using Type = void*;
    static Type None() noexcept { return nullptr; }
    static void Close(Type buffer) noexcept { LsaFreeMemory(buffer); }
};
using LsaBuffer = lang::UniqueHandle<LsaBufferTraits>;

struct NetApiBufferTraits {
    using Type = BYTE*;
    static Type None() noexcept { return nullptr; }
    static void Close(Type buffer) noexcept { NetApiBufferFree(buffer); }
};
using NetApiBuffer = lang::UniqueHandle<NetApiBufferTraits>;

std::string Narrow(const LSA_UNICODE_STRING& text) {
    return util::Narrow({text.Buffer, text.Length / sizeof(wchar_t)});
}

// Messages are searched for as they are: the blanks at their beginnings and ends belong to them.

LsaPolicy OpenPolicy() {
    LSA_OBJECT_ATTRIBUTES attributes{};
    LsaPolicy policy;
    const NTSTATUS status =
        LsaOpenPolicy(nullptr, &attributes, POLICY_VIEW_LOCAL_INFORMATION, policy.Receive());
    if (status != 0) {
        throw DomainError(" - IsDomainMember returned error ", 73, status,
                          static_cast<std::int32_t>(LsaNtStatusToWinError(status)));
    }
    return policy;
}

/// The policy's information of that class; none when the query fails, which is ignored.
LsaBuffer QueryPolicy(const LsaPolicy& policy, POLICY_INFORMATION_CLASS informationClass) {
    LsaBuffer buffer;
    if (LsaQueryInformationPolicy(policy.Get(), informationClass, buffer.Receive()) != 0) {
        buffer.Release();  // nothing was handed out
    }
    return buffer;
}

/// Throws unless a join or unjoin has worked: 0, or 1 where a restart completes it.
void CheckJoinResult(std::uint32_t result, const char* message, std::int32_t category) {
    if (result != 0 && result != 1) {
        const auto code = static_cast<std::int32_t>(result);
        throw DomainError(message, code < 0 ? 735 : 728, category, code);
    }
}

/// Erases its text when the scope ends.
class SecretWideText {
public:
    explicit SecretWideText(const std::string& narrow) : text_(util::Widen(narrow)) {}
    ~SecretWideText() { util::SecureErase(text_); }
    SecretWideText(const SecretWideText&) = delete;
    SecretWideText& operator=(const SecretWideText&) = delete;
    const wchar_t* Get() const noexcept { return text_.c_str(); }

private:
    std::wstring text_;
};

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

/// Moves the object. Returns the text of what failed, null when nothing did.
const char* MoveObject(const std::string& source, const std::string& destination,
                       const std::string& account, const std::string& password, HRESULT& result) {
    const Bstr wideSource{std::string_view(source)};  // automation takes a BSTR
    const std::wstring wideDestination = util::Widen(destination);
    const std::wstring wideAccount = util::Widen(account);
    const SecretWideText widePassword(password);

    CoInitialize(nullptr);
    const char* failure = nullptr;
    {
        ComPointer<IADsContainer> container;
        result = ADsOpenObject(wideDestination.c_str(), wideAccount.c_str(), widePassword.Get(),
                               ADS_SECURE_AUTHENTICATION, IID_IADsContainer,
                               reinterpret_cast<void**>(container.Receive()));
        if (FAILED(result)) {
            failure = "Unable to bind to destination OU";
        } else {
            ComPointer<IDispatch> moved;
            result = container->MoveHere(wideSource.Get(), nullptr, moved.Receive());
            container.Reset();
            if (FAILED(result)) {
                failure = "Unable to locate computer at source OU";
            }
        }
    }
    CoUninitialize();
    return failure;
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
    if (skipRefresh_) {
        return member_;
    }
    LsaPolicy policy = OpenPolicy();
    if (const LsaBuffer buffer = QueryPolicy(policy, PolicyPrimaryDomainInformation)) {
        const auto* const primary = static_cast<const POLICY_PRIMARY_DOMAIN_INFO*>(buffer.Get());
        member_ = primary->Sid != nullptr;
        if (member_) {
            domain_ = Narrow(primary->Name);
        }
    }
    if (const LsaBuffer buffer = QueryPolicy(policy, PolicyDnsDomainInformation)) {
        const auto* const dns = static_cast<const POLICY_DNS_DOMAIN_INFO*>(buffer.Get());
        if (dns->DnsDomainName.Length != 0) {
            member_ = true;
            dnsDomain_ = Narrow(dns->DnsDomainName);
        }
    }
    if (!member_) {
        NetApiBuffer workstation;
        NetWkstaGetInfo(nullptr, 100, workstation.Receive());
        if (!workstation) {
            policy.Release();  // left open: one handle each time that the service is silent
            return member_;
        }
        const auto* const info = reinterpret_cast<const WKSTA_INFO_100*>(workstation.Get());
        workgroup_ = util::Narrow(reinterpret_cast<const wchar_t*>(info->wki100_langroup));
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
    ULONG size = 0;
    GetComputerObjectNameA(NameFullyQualifiedDN, nullptr, &size);
    if (size != 0) {
        // The name is written one byte into the buffer: longer by that byte and by a terminator.
        std::vector<char> buffer(std::size_t{size} + 2);
        if (GetComputerObjectNameA(NameFullyQualifiedDN, buffer.data() + 1, &size) == 0) {
            throw DomainError("GetOu() failed calling GetComputerObjectName()", 247, 0,
                              static_cast<std::int32_t>(GetLastError()));
        }
        ExtractOuPath(buffer.data() + 1, ou_, asDn);
    }
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
    HRESULT result = S_OK;
    const char* const failure =
        MoveObject(SourcePath(computer, current, currentDn),
                   DestinationPath(destination, destinationDn), account_, password_, result);
    if (failure != nullptr) {
        throw DomainError(failure, 469, 1, result);
    }
    return false;  // also when the object was moved
}

}  // namespace sys
