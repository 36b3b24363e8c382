#include "common/sys/DomainSystem.h"

// In the order in which they need each other.
#include <windows.h>

#include <oleauto.h>

#include <activeds.h>
#include <lm.h>
#include <ntsecapi.h>

#define SECURITY_WIN32
#include <security.h>
#include <wrl/client.h>

#include <vector>

#include "common/err/GeneralError.h"
#include "common/lang/Handle.h"
#include "common/sys/Automation.h"
#include "common/sys/WideText.h"
#include "common/util/Strings.h"

namespace sys {

namespace {

using Microsoft::WRL::ComPtr;

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

std::string TextOf(const LSA_UNICODE_STRING& text) {
    return Narrow({text.Buffer, text.Length / sizeof(wchar_t)});
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

/// Erases its text when the scope ends.
class SecretWideText {
public:
    explicit SecretWideText(const std::string& narrow) : text_(Widen(narrow)) {}
    ~SecretWideText() { SecureErase(text_); }
    SecretWideText(const SecretWideText&) = delete;
    SecretWideText& operator=(const SecretWideText&) = delete;
    const wchar_t* Get() const noexcept { return text_.c_str(); }

private:
    std::wstring text_;
};

}  // namespace

void ReadMembership(const Membership& membership) {
    LsaPolicy policy = OpenPolicy();
    if (const LsaBuffer buffer = QueryPolicy(policy, PolicyPrimaryDomainInformation)) {
        const auto* const primary = static_cast<const POLICY_PRIMARY_DOMAIN_INFO*>(buffer.Get());
        membership.isMember = primary->Sid != nullptr;
        if (membership.isMember) {
            membership.domain = TextOf(primary->Name);
        }
    }
    if (const LsaBuffer buffer = QueryPolicy(policy, PolicyDnsDomainInformation)) {
        const auto* const dns = static_cast<const POLICY_DNS_DOMAIN_INFO*>(buffer.Get());
        if (dns->DnsDomainName.Length != 0) {
            membership.isMember = true;
            membership.dnsDomain = TextOf(dns->DnsDomainName);
        }
    }
    if (!membership.isMember) {
        NetApiBuffer workstation;
        NetWkstaGetInfo(nullptr, 100, workstation.Receive());
        if (!workstation) {
            policy.Release();  // left open: one handle each time that the service is silent
            return;
        }
        const auto* const info = reinterpret_cast<const WKSTA_INFO_100*>(workstation.Get());
        membership.workgroup = Narrow(reinterpret_cast<const wchar_t*>(info->wki100_langroup));
    }
}

std::string ReadComputerObjectName() {
    ULONG size = 0;
    GetComputerObjectNameA(NameFullyQualifiedDN, nullptr, &size);
    if (size == 0) {
        return {};
    }
    // The name is written one byte into the buffer: longer by that byte and by a terminator.
    std::vector<char> buffer(std::size_t{size} + 2);
    if (GetComputerObjectNameA(NameFullyQualifiedDN, buffer.data() + 1, &size) == 0) {
        throw DomainError("GetOu() failed calling GetComputerObjectName()", 247, 0,
                          static_cast<std::int32_t>(GetLastError()));
    }
    return buffer.data() + 1;
}

const char* MoveComputerObject(const std::string& source, const std::string& destination,
                               const std::string& account, const std::string& password,
                               std::int32_t& result) {
    const Bstr wideSource{std::string_view(source)};  // automation takes a BSTR
    const std::wstring wideDestination = Widen(destination);
    const std::wstring wideAccount = Widen(account);
    const SecretWideText widePassword(password);

    /// Left even where entering failed.
    struct ComScope {
        ComScope() { CoInitialize(nullptr); }
        ~ComScope() { CoUninitialize(); }
        ComScope(const ComScope&) = delete;
        ComScope& operator=(const ComScope&) = delete;
    } const com;
    ComPtr<IADsContainer> container;  // whose __uuidof mingw-w64 does not have
    result = ADsOpenObject(wideDestination.c_str(), wideAccount.c_str(), widePassword.Get(),
                           ADS_SECURE_AUTHENTICATION, IID_IADsContainer,
                           reinterpret_cast<void**>(container.GetAddressOf()));
    if (FAILED(result)) {
        return "Unable to bind to destination OU";
    }
    ComPtr<IDispatch> moved;
    result = container->MoveHere(wideSource.Get(), nullptr, moved.GetAddressOf());
    return FAILED(result) ? "Unable to locate computer at source OU" : nullptr;
}

}  // namespace sys
