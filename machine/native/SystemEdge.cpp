// What the module asks the simulated machine for beside WMI.
#include <algorithm>

#include "common/err/GeneralError.h"
#include "common/ipc/IpAddress.h"
#include "common/ipc/WinSock.h"
#include "common/lang/Pause.h"
#include "common/proc/RunCommand.h"
#include "common/sys/DllProxy.h"
#include "common/sys/DomainSystem.h"
#include "common/sys/RegistryText.h"
#include "common/util/FileUtils.h"
#include "machine/Cipher.h"
#include "machine/Text.h"
#include "machine/model/Directory.h"
#include "machine/model/RegistryView.h"
#include "machine/native/Machine.h"
#include "machine/route/RouteCommand.h"

using native::Call;
using native::TheMachine;

/// What a library handle points to.
struct HINSTANCE__ {};

namespace sys {

void readMembership(const Membership& membership) {
    Call call("LsaOpenPolicy", {});
    if (const auto fault = call.Fault()) {
        const auto status = static_cast<std::int32_t>(*fault);
        throw DomainError(" - IsDomainMember returned error ", 73, status, status);
    }
    const machine::Membership& known = TheMachine().state.membership;
    membership.isMember = known.member;
    if (known.member) {
        membership.domain = known.domain;
        membership.dnsDomain = known.dnsDomain;
    } else {
        membership.workgroup = known.workgroup;
    }
}

std::string readComputerObjectName() {
    const Call call("GetComputerObjectNameA", {});
    return machine::model::OwnDistinguishedName(TheMachine().state).value_or("");
}

const char* moveComputerObject(const std::string& source, const std::string& destination,
                               const std::string& account, const std::string& password,
                               std::int32_t& result) {
    machine::State& state = TheMachine().state;
    TheMachine().lastPassword = password;
    machine::model::Container container;
    machine::Account bound;
    const Call bind("ADsOpenObject", {{"path", destination}, {"user", account}});
    std::uint32_t code =
        machine::model::Bind(state, destination, account, password, container, bound);
    result = static_cast<std::int32_t>(code);
    if (code != machine::model::DirectoryOk) {
        return "Unable to bind to destination OU";
    }
    const Call move("MoveHere", {{"source", source}});
    code = machine::model::MoveComputer(state, destination, bound, source, "");
    result = static_cast<std::int32_t>(code);
    return code == machine::model::DirectoryOk ? nullptr : "Unable to locate computer at source OU";
}

std::string readLocalMachineText(const std::string& subkey, const std::string& name) {
    const Call call("RegQueryValueExA", {{"subkey", subkey}, {"name", name}});
    const auto value = machine::model::FindValue(TheMachine().state, subkey, name);
    if (!value) {
        throw RegistryError("OpenIntern() - Cannot open key.", 813, 3, 2);
    }
    return value->data.c_str();  // without its terminator
}

// The module's own constructor takes it so. NOLINTNEXTLINE(modernize-pass-by-value)
DllProxy::DllProxy(std::string filename) : filename_(std::move(filename)) {}

DllProxy::~DllProxy() {
    TheMachine().loadedLibraries -= module_ != nullptr ? 1 : 0;
}

void DllProxy::Load() {
    static HINSTANCE__ library;
    const Call call("LoadLibraryA", {{"name", filename_}});
    if (TheMachine().state.system.libCrypto == machine::CryptoLibrary::Absent) {
        throw CDllProxyError("DllProxy::Load - Load Library Failed", 70, 0, 126);
    }
    module_ = &library;
    ++TheMachine().loadedLibraries;
}

namespace {

int Decrypt(const std::string& enciphered, std::string& plain) {
    plain = machine::Decipher(enciphered);
    return 0;
}

}  // namespace

void DllProxy::GetProcAddress(void*& slot, const char* name) {
    if (module_ == nullptr) {
        Load();
    }
    const Call call("GetProcAddress", {{"name", name}});
    if (TheMachine().state.system.libCrypto != machine::CryptoLibrary::Present) {
        throw CDllProxyError("DllProxy::GetProcAddress - GetProcAddress Failed", 83, 1, 127);
    }
    slot = reinterpret_cast<void*>(&Decrypt);
}

}  // namespace sys

namespace ipc {

void ResolveHostName(const std::string& name, std::uint32_t& address) {
    const Call call("gethostbyname", {{"name", name}});
    const auto& hosts = TheMachine().state.hosts;
    const auto found = std::ranges::find_if(hosts, [&name](const machine::HostName& host) {
        return machine::EqualNoCase(host.name, name);
    });
    if (found == hosts.end()) {
        throw CIPAddressError("common\\ipc\\IpAddress", "IPAddress::Connect Name Resolution Error",
                              159, 11001);
    }
    if (!found->addresses.empty()) {
        address = IPv4Address(found->addresses.front()).NetworkOrder();
    }
}

}  // namespace ipc

namespace lang {

void Pause(std::uint32_t milliseconds) {
    const Call call("Sleep", {{"milliseconds", std::to_string(milliseconds)}});
    TheMachine().clock += milliseconds;
}

}  // namespace lang

namespace proc {

std::int32_t RunCommand(const std::string& commandLine) {
    Call call("CreateProcessA", {{"command line", commandLine}});
    if (const auto forced = call.Outcome("route")) {
        return static_cast<std::int32_t>(*forced);
    }
    std::vector<std::string> words = machine::Split(commandLine, ' ');
    words.erase(words.begin());  // the program
    const machine::RouteOutcome outcome = machine::RunRoute(words, TheMachine().state.routes);
    machine::ApplyChange(TheMachine().state.routes, outcome.change);
    return outcome.exitCode;
}

}  // namespace proc

namespace util {

bool FileExists(const std::string& path) {
    return TheMachine().files.contains(path);
}

void MoveFile(const std::string& source, const std::string& destination) {
    TheMachine().files.erase(source);
    TheMachine().files.insert(destination);
}

void DeleteFile(const std::string& path) {
    TheMachine().files.erase(path);
}

bool IsSameFile(const std::string& left, const std::string& right) {
    return left == right;
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
