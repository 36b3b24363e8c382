// What the machine says about its name and membership: LSA policy, workstation information, the
// distinguished name of its computer object.
#include <windows.h>

#include <lmcons.h>

#include <lmerr.h>
#include <lmwksta.h>
#include <ntsecapi.h>

#define SECURITY_WIN32
#include <security.h>

#include <cstring>
#include <new>

#include "machine/Call.h"
#include "machine/RealCalls.h"
#include "machine/Text.h"
#include "machine/WideText.h"
#include "machine/hooks/Hooks.h"
#include "machine/model/Directory.h"
#include "machine/model/Identity.h"

namespace machine {
namespace {

constexpr std::string_view kPolicyKind = "LSA policy handle";
constexpr std::string_view kLsaBufferKind = "LSA buffer";
constexpr std::string_view kNetBufferKind = "NetApi buffer";

constexpr std::uint32_t kStatusInvalidHandle = 0xC0000008;
constexpr std::uint32_t kStatusInvalidParameter = 0xC000000D;
constexpr std::uint32_t kStatusObjectTypeMismatch = 0xC0000024;

/// The SID that a member machine reports; only that there is one matters.
struct DomainSid {
    std::uint8_t revision = 1;
    std::uint8_t subAuthorities = 4;
    std::uint8_t authority[6] = {0, 0, 0, 0, 0, 5};
    std::uint32_t parts[4] = {21, 1000001, 1000002, 1000003};
};

/// One block that holds a record and everything that it points to, as the platform hands it out.
class BlockWriter {
public:
    explicit BlockWriter(std::size_t size)
        : block_(std::make_unique<std::byte[]>(size)), size_(size) {}

    template <typename Record>
    Record* Add(const Record& record) {
        constexpr std::size_t kAlignment = alignof(std::max_align_t);
        used_ = (used_ + kAlignment - 1) / kAlignment * kAlignment;
        return new (Take(sizeof(Record))) Record(record);
    }

    wchar_t* AddText(const std::wstring& text) {
        const std::size_t bytes = (text.size() + 1) * sizeof(wchar_t);
        void* place = Take(bytes);
        std::memcpy(place, text.c_str(), bytes);
        return static_cast<wchar_t*>(place);
    }

    std::unique_ptr<std::byte[]> Finish() { return std::move(block_); }

private:
    void* Take(std::size_t bytes) {
        if (used_ + bytes > size_) {
            throw std::bad_alloc();
        }
        used_ += bytes;
        return block_.get() + used_ - bytes;
    }

    std::unique_ptr<std::byte[]> block_;
    std::size_t size_;
    std::size_t used_ = 0;
};

void* HandOutBlock(Call& call, std::string_view kind, BlockWriter& writer) {
    auto block = writer.Finish();
    void* address = block.get();
    const auto identity = reinterpret_cast<std::uintptr_t>(address);
    call->buffers.emplace(identity, std::move(block));
    call->ledger.HandOut(kind, identity, call.Origin());
    return address;
}

/// Frees a handed out block; records misuse when there is none.
void TakeBlockBack(Call& call, std::string_view kind, void* address) {
    const auto identity = reinterpret_cast<std::uintptr_t>(address);
    if (!call->ledger.TakeBack(kind, identity)) {
        call->ledger.RecordMisuse(call.Origin() + ": this " + std::string(kind) + " is not held");
        return;
    }
    call->buffers.erase(identity);
}

LSA_UNICODE_STRING Text(BlockWriter& writer, const std::string& text) {
    LSA_UNICODE_STRING unicode = {};
    if (!text.empty()) {
        const std::wstring wide = Widen(text);
        unicode.Buffer = writer.AddText(wide);
        // Counted in bytes; a terminator may follow but does not count.
        unicode.Length = static_cast<USHORT>(wide.size() * sizeof(wchar_t));
        unicode.MaximumLength = static_cast<USHORT>(unicode.Length + sizeof(wchar_t));
    }
    return unicode;
}

std::size_t RoomFor(const Membership& membership) {
    return 512 + 8 * (membership.workgroup.size() + membership.domain.size() +
                      membership.dnsDomain.size());
}

NTSTATUS ServeLsaOpenPolicy(Core& core, PLSA_UNICODE_STRING system,
                            PLSA_OBJECT_ATTRIBUTES attributes, ACCESS_MASK access,
                            PLSA_HANDLE policy) {
    Call call(core, "LsaOpenPolicy", {{"access", Hex(access)}});
    if (const auto fault = call.Fault()) {
        return call.NtStatus(*fault);
    }
    if (attributes == nullptr || policy == nullptr) {
        return call.NtStatus(kStatusInvalidParameter);
    }
    if (system != nullptr && system->Length != 0) {
        call.Unexpected("the policy of another machine");
        return call.NtStatus(kStatusInvalidParameter);
    }
    const std::uintptr_t handle = call->NewHandle();
    call->ledger.HandOut(kPolicyKind, handle, call.Origin());
    *policy = reinterpret_cast<LSA_HANDLE>(handle);
    return call.NtStatus(0);
}

NTSTATUS ServeLsaQueryInformationPolicy(Core& core, LSA_HANDLE policy,
                                        POLICY_INFORMATION_CLASS wanted, PVOID* buffer) {
    Call call(core, "LsaQueryInformationPolicy",
              {{"class", std::to_string(static_cast<int>(wanted))}});
    if (const auto fault = call.Fault()) {
        return call.NtStatus(*fault);
    }
    if (buffer == nullptr) {
        return call.NtStatus(kStatusInvalidParameter);
    }
    if (!call->ledger.Holds(kPolicyKind, reinterpret_cast<std::uintptr_t>(policy))) {
        call->ledger.RecordMisuse(call.Origin() + ": the policy is not open");
        return call.NtStatus(kStatusInvalidHandle);
    }
    const Membership& membership = model::ShownMembership(call->state);
    BlockWriter writer(RoomFor(membership));
    if (wanted == PolicyPrimaryDomainInformation) {
        auto* information = writer.Add(POLICY_PRIMARY_DOMAIN_INFO());
        information->Name =
            Text(writer, membership.member ? membership.domain : membership.workgroup);
        information->Sid = membership.member ? writer.Add(DomainSid()) : nullptr;
    } else if (wanted == PolicyDnsDomainInformation) {
        auto* information = writer.Add(POLICY_DNS_DOMAIN_INFO());
        information->Name =
            Text(writer, membership.member ? membership.domain : membership.workgroup);
        if (membership.member) {
            information->DnsDomainName = Text(writer, membership.dnsDomain);
            information->DnsForestName = Text(writer, membership.dnsDomain);
            information->Sid = writer.Add(DomainSid());
        }
    } else {
        call.Unexpected("an information class other than the primary domain and the DNS domain");
        return call.NtStatus(kStatusObjectTypeMismatch);
    }
    *buffer = HandOutBlock(call, kLsaBufferKind, writer);
    return call.NtStatus(0);
}

NTSTATUS ServeLsaFreeMemory(Core& core, PVOID buffer) {
    Call call(core, "LsaFreeMemory", {}, Failing::kNever);
    TakeBlockBack(call, kLsaBufferKind, buffer);
    return call.NtStatus(0);
}

NTSTATUS ServeLsaClose(Core& core, LSA_HANDLE policy) {
    Call call(core, "LsaClose");
    if (const auto fault = call.Fault()) {
        call->ledger.Excuse(kPolicyKind, reinterpret_cast<std::uintptr_t>(policy));
        return call.NtStatus(*fault);
    }
    if (!call->ledger.TakeBack(kPolicyKind, reinterpret_cast<std::uintptr_t>(policy))) {
        call->ledger.RecordMisuse(call.Origin() + ": the policy is not open");
        return call.NtStatus(kStatusInvalidHandle);
    }
    return call.NtStatus(0);
}

ULONG ServeLsaNtStatusToWinError(Core& core, NTSTATUS status) {
    Call call(core, "LsaNtStatusToWinError", {{"status", Hex(static_cast<std::uint32_t>(status))}},
              Failing::kNever);
    const ULONG error = Real().LsaNtStatusToWinError(status);
    call.Note(std::to_string(error));
    return error;
}

DWORD ServeNetWkstaGetInfo(Core& core, LPCWSTR server, DWORD level, LPBYTE* buffer) {
    Call call(core, "NetWkstaGetInfo", {{"level", std::to_string(level)}});
    const auto result = [&call](DWORD code) { return static_cast<DWORD>(call.Status(code)); };
    if (const auto fault = call.Fault()) {
        return result(*fault);
    }
    if (buffer == nullptr) {
        return result(ERROR_INVALID_PARAMETER);
    }
    if (server != nullptr && *server != L'\0') {
        call.Unexpected("the workstation information of another machine");
        return result(ERROR_BAD_NETPATH);
    }
    if (level != 100) {
        call.Unexpected("a level other than 100");
        return result(ERROR_INVALID_LEVEL);
    }
    const State& state = call->state;
    if (!state.system.workstationService) {
        return result(NERR_WkstaNotStarted);
    }
    const Membership& membership = model::ShownMembership(state);
    BlockWriter writer(RoomFor(membership) + 8 * state.computerName.size());
    auto* information = writer.Add(WKSTA_INFO_100());
    information->wki100_platform_id = 500;  // PLATFORM_ID_NT
    information->wki100_computername = writer.AddText(Widen(state.computerName));
    information->wki100_langroup =
        writer.AddText(Widen(membership.member ? membership.domain : membership.workgroup));
    information->wki100_ver_major = 10;
    *buffer = static_cast<LPBYTE>(HandOutBlock(call, kNetBufferKind, writer));
    return result(NERR_Success);
}

DWORD ServeNetApiBufferFree(Core& core, LPVOID buffer) {
    Call call(core, "NetApiBufferFree", {}, Failing::kNever);
    if (buffer != nullptr) {
        TakeBlockBack(call, kNetBufferKind, buffer);
    }
    return static_cast<DWORD>(call.Status(NERR_Success));
}

BOOLEAN ServeGetComputerObjectNameA(Core& core, EXTENDED_NAME_FORMAT format, LPSTR name,
                                    PULONG size) {
    Call call(core, "GetComputerObjectNameA",
              {{"format", std::to_string(static_cast<int>(format))}});
    const auto result = [&call](bool succeeded, DWORD error) {
        return static_cast<BOOLEAN>(call.Boolean(succeeded, error));
    };
    if (const auto fault = call.Fault()) {
        return result(false, *fault);
    }
    if (size == nullptr) {
        return result(false, ERROR_INVALID_PARAMETER);
    }
    if (format != NameFullyQualifiedDN) {
        call.Unexpected("a name format other than the distinguished name");
        return result(false, ERROR_INVALID_PARAMETER);
    }
    State& state = call->state;
    // The domain knows the machine from the restart on, whatever the policy says by then.
    if (!state.membership.member) {
        return result(false, ERROR_CANT_ACCESS_DOMAIN_INFO);
    }
    const auto dn = model::OwnDistinguishedName(state);
    if (!dn) {
        const Domain* domain = model::FindDomain(state, state.membership.dnsDomain);
        return result(false, domain != nullptr && domain->reachable ? ERROR_NONE_MAPPED
                                                                    : ERROR_NO_SUCH_DOMAIN);
    }
    // Both sizes, given and returned, count the terminator.
    const auto needed = static_cast<ULONG>(dn->size() + 1);
    const bool fits = *size >= needed;
    *size = needed;
    if (name == nullptr) {
        // Documented: it succeeds, or fails with 122; both set the size.
        return result(true, 0);
    }
    if (!fits) {
        return result(false, ERROR_INSUFFICIENT_BUFFER);
    }
    std::memcpy(name, dn->c_str(), needed);
    call.AddArgument("name", *dn);
    return result(true, 0);
}

}  // namespace

void AddIdentityHooks(Hooks& hooks) {
    hooks.push_back(MakeHook<&ServeGetComputerObjectNameA>("GetComputerObjectNameA"));
    hooks.push_back(MakeHook<&ServeLsaClose>("LsaClose"));
    hooks.push_back(MakeHook<&ServeLsaFreeMemory>("LsaFreeMemory"));
    hooks.push_back(MakeHook<&ServeLsaNtStatusToWinError>("LsaNtStatusToWinError"));
    hooks.push_back(MakeHook<&ServeLsaOpenPolicy>("LsaOpenPolicy"));
    hooks.push_back(MakeHook<&ServeLsaQueryInformationPolicy>("LsaQueryInformationPolicy"));
    hooks.push_back(MakeHook<&ServeNetApiBufferFree>("NetApiBufferFree"));
    hooks.push_back(MakeHook<&ServeNetWkstaGetInfo>("NetWkstaGetInfo"));
}

}  // namespace machine
