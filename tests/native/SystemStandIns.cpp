#include "common/err/GeneralError.h"
#include "common/ipc/IpAddress.h"
#include "common/ipc/WinSock.h"
#include "common/lang/Pause.h"
#include "common/proc/RunCommand.h"
#include "common/sys/CryptoDll.h"
#include "common/sys/Domain.h"
#include "common/util/FileUtils.h"
#include "common/util/Strings.h"
#include "tests/native/FakeMachine.h"

/// What a library handle points to.
struct HINSTANCE__ {};

using fake::TheMachine;

namespace sys {

Domain::~Domain() {
    ForgetPassword();
}

void Domain::SetAccount(const std::string& user, const std::string& password) {
    ForgetPassword();
    user_ = user;
    password_ = password;
    TheMachine().heldPassword = password;
}

void Domain::ForgetPassword() noexcept {
    util::SecureErase(password_);
    TheMachine().heldPassword.clear();
}

bool Domain::IsDomainMember() {
    fake::NoteQuery("IsDomainMember");
    member_ = TheMachine().member;
    if (member_) {
        domain_ = TheMachine().domain;
        dnsDomain_ = TheMachine().dnsDomain;
    } else {
        workgroup_ = "WORKGROUP";
    }
    return member_;
}

const std::string& Domain::GetOu(std::string& out, bool asDn) {
    fake::NoteQuery("GetOu", user_);
    if (IsDomainMember()) {
        ou_ = TheMachine().unit;
        if (asDn) {
            BuildDn({}, TheMachine().unit, ou_);
        }
    }
    out = ou_;
    return out;
}

std::uint8_t Domain::JoinWorkgroup(const std::string& name) {
    fake::NoteChange("JoinWorkgroup", name + ", " + user_ + ":" + password_);
    return static_cast<std::uint8_t>(fake::ReturnOf("JoinWorkgroup"));
}

std::uint8_t Domain::JoinDomainAndOu(const std::string& domain, const std::string& ou,
                                     bool option) {
    fake::NoteChange("JoinDomainAndOu",
                     domain + ", " + ou + (option ? ", option, " : ", ") + user_ + ":" + password_);
    return static_cast<std::uint8_t>(fake::ReturnOf("JoinDomainAndOu"));
}

bool Domain::MoveOu(const std::string& destination) {
    fake::NoteChange("MoveOu", destination + ", " + user_ + ":" + password_);
    return false;
}

// The module's own constructor takes it so. NOLINTNEXTLINE(modernize-pass-by-value)
DllProxy::DllProxy(std::string filename) : filename_(std::move(filename)) {}

DllProxy::~DllProxy() {
    TheMachine().loadedLibraries -= module_ != nullptr ? 1 : 0;
}

void DllProxy::Load() {
    static HINSTANCE__ library;
    fake::NoteQuery("Load", filename_);
    if (!TheMachine().hasCryptoLibrary) {
        throw CDllProxyError("DllProxy::Load - Load Library Failed", 70, 0, 126);
    }
    module_ = &library;
    ++TheMachine().loadedLibraries;
}

void DllProxy::GetProcAddress(void*& slot, const char* name) {
    if (module_ == nullptr) {
        Load();
    }
    fake::NoteQuery("GetProcAddress", name);
    slot = module_;
}

CryptoDll::CryptoDll() : DllProxy("LibCrypto.dll") {}

int CryptoDll::Decrypt(const std::string& enciphered, std::string& plain) {
    if (decrypt_ == nullptr) {
        GetProcAddress(decrypt_, "Decrypt");
    }
    fake::NoteQuery("Decrypt", enciphered);
    plain.assign(enciphered.rbegin(), enciphered.rend());
    return 0;
}

}  // namespace sys

namespace ipc {

void ResolveHostName(const std::string& name, std::uint32_t& address) {
    fake::NoteQuery("ResolveHostName", name);
    const auto found = TheMachine().hostNames.find(name);
    if (found == TheMachine().hostNames.end()) {
        throw CIPAddressError("common\\ipc\\IpAddress", "IPAddress::Connect Name Resolution Error",
                              159, 11001);
    }
    if (!found->second.empty()) {
        address = IPv4Address(found->second).NetworkOrder();
    }
}

}  // namespace ipc

namespace lang {

void Pause(std::uint32_t milliseconds) {
    fake::NoteChange("Pause", std::to_string(milliseconds));
}

}  // namespace lang

namespace proc {

std::int32_t RunCommand(const std::string& commandLine) {
    fake::NoteChange("RunCommand", commandLine);
    return static_cast<std::int32_t>(fake::ReturnOf("RunCommand"));
}

}  // namespace proc

namespace util {

bool FileExists(const std::string& path) {
    return TheMachine().files.contains(path);
}

void MoveFile(const std::string& source, const std::string& destination) {
    fake::NoteChange("MoveFile", source + ", " + destination);
    TheMachine().files.erase(source);
    TheMachine().files.insert(destination);
}

void DeleteFile(const std::string& path) {
    fake::NoteChange("DeleteFile", path);
    TheMachine().files.erase(path);
}

bool StandsAt(const std::string& path, const std::string& target) {
    return path == target;
}

std::string ExecutablePath() {
    return "C:\\agent\\agent.exe";
}

SplitPath Split(const std::string& path) {
    const std::size_t separator = path.find_last_of("\\/");
    if (separator == std::string::npos) {
        return {{}, path};
    }
    return {path.substr(0, separator), path.substr(separator + 1)};
}

}  // namespace util
