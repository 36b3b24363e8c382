// Host names and files, as the module's base asks the simulated machine for them.
#include <algorithm>

#include "common/err/GeneralError.h"
#include "common/ipc/IpAddress.h"
#include "common/ipc/WinSock.h"
#include "common/util/FileUtils.h"
#include "machine/Text.h"
#include "machine/native/Machine.h"

namespace ipc {

namespace {

using native::Call;
using native::TheMachine;

}  // namespace

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

namespace util {

namespace {

using native::Call;
using native::TheMachine;

}  // namespace

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
