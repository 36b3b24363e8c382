// What the module asks the simulated machine for beside WMI.
#include "common/err/GeneralError.h"
#include "common/proc/RunCommand.h"
#include "common/sys/DllProxy.h"
#include "common/sys/DomainSystem.h"
#include "common/sys/Pause.h"
#include "common/sys/RegistryText.h"
#include "machine/Cipher.h"
#include "machine/Text.h"
#include "machine/model/Directory.h"
#include "machine/model/Identity.h"
#include "machine/model/RegistryView.h"
#include "machine/native/Machine.h"
#include "machine/route/RouteCommand.h"

/// What a library handle points to.
struct HINSTANCE__ {};

namespace sys {

namespace {

using native::Call;
using native::TheMachine;

}  // namespace

void ReadMembership(const Membership& membership) {
    Call call("LsaOpenPolicy", {});
    if (const auto fault = call.Fault()) {
        const auto status = static_cast<std::int32_t>(*fault);
        throw DomainError(" - IsDomainMember returned error ", 73, status, status);
    }
    const machine::Membership& known = machine::model::ShownMembership(TheMachine().state);
    membership.isMember = known.member;
    if (known.member) {
        membership.domain = known.domain;
        membership.dnsDomain = known.dnsDomain;
    } else if (TheMachine().state.system.workstationService) {  // which is what is asked for it
        membership.workgroup = known.workgroup;
    }
}

std::string ReadComputerObjectName() {
    const Call call("GetComputerObjectNameA", {});
    return machine::model::OwnDistinguishedName(TheMachine().state).value_or("");
}

const char* MoveComputerObject(const std::string& source, const std::string& destination,
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
    if (code != machine::model::kDirectoryOk) {
        return "Unable to bind to destination OU";
    }
    const Call move("MoveHere", {{"source", source}});
    code = machine::model::MoveComputer(state, destination, bound, source, "");
    result = static_cast<std::int32_t>(code);
    return code == machine::model::kDirectoryOk ? nullptr
                                                : "Unable to locate computer at source OU";
}

std::string ReadLocalMachineText(const std::string& subkey, const std::string& name) {
    const Call call("RegQueryValueExA", {{"subkey", subkey}, {"name", name}});
    const auto value = machine::model::FindValue(TheMachine().state, subkey, name);
    if (!value) {
        throw RegistryError("OpenIntern() - Cannot open key.", 813, 3, 2);
    }
    return value->data.substr(0, value->data.find('\0'));
}

/// The module's own constructor takes it so. NOLINTNEXTLINE(modernize-pass-by-value)
DllProxy::DllProxy(std::string filename) : filename_(std::move(filename)) {}

DllProxy::~DllProxy() {
    TheMachine().loadedLibraries -= module_ != nullptr ? 1 : 0;
}

void DllProxy::Load() {
    static HINSTANCE__ library;
    const Call call("LoadLibraryA", {{"name", filename_}});
    if (TheMachine().state.system.libCrypto == machine::CryptoLibrary::kAbsent) {
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
    if (TheMachine().state.system.libCrypto != machine::CryptoLibrary::kPresent) {
        throw CDllProxyError("DllProxy::GetProcAddress - GetProcAddress Failed", 83, 1, 127);
    }
    slot = reinterpret_cast<void*>(&Decrypt);
}

void Pause(std::uint32_t milliseconds) {
    const Call call("Sleep", {{"milliseconds", std::to_string(milliseconds)}});
    TheMachine().PassTime(milliseconds);
}

}  // namespace sys

namespace proc {

namespace {

using native::Call;
using native::TheMachine;

}  // namespace

std::int32_t RunCommand(const std::string& commandLine) {
    Call call("CreateProcessA", {{"command line", commandLine}});
    if (const auto forced = call.Outcome("route")) {
        return static_cast<std::int32_t>(*forced);
    }
    std::vector<std::string> words = machine::Split(commandLine, ' ');
    words.erase(words.begin());  // the program
    return machine::RunRoute(words, TheMachine().state).exitCode;
}

}  // namespace proc
