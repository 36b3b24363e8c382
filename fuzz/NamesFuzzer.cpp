// Distinguished names and addresses: the module's answers against plain ones, and there and back.
// The first line is the domain, the second the unit; every line is an address too.
#include <arpa/inet.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "common/err/GeneralError.h"
#include "common/ipc/IpAddress.h"
#include "common/sys/Domain.h"
#include "common/util/Strings.h"
#include "fuzz/Require.h"
#include "machine/native/Machine.h"

namespace {

std::vector<std::string> Split(const std::string& text, char separator) {
    std::vector<std::string> parts(1);
    for (const char byte : text) {
        if (byte == separator) {
            parts.emplace_back();
        } else {
            parts.back() += byte;
        }
    }
    return parts;
}

bool Contains(const std::string& text, const char* part) {
    return text.find(part) != std::string::npos;
}

std::string Joined(const std::vector<std::string>& parts, const std::string& separator) {
    std::string joined;
    for (const std::string& part : parts) {
        joined += &part == &parts.front() ? "" : separator;
        joined += part;
    }
    return joined;
}

std::string PlainName(const std::string& domain, const std::string& unit) {
    std::string name = unit;
    if (!Contains(unit, "OU=") && !unit.empty()) {
        std::vector<std::string> units = Split(unit, '/');
        std::reverse(units.begin(), units.end());
        name = "OU=" + Joined(units, ",OU=");
    } else if (Contains(unit, "OU=") && Contains(unit, "DC=")) {
        return name;
    }
    name += !unit.empty() && !domain.empty() ? "," : "";
    const bool isName = domain.empty() || Contains(domain, "DC=");
    name += isName ? domain : "DC=" + Joined(Split(domain, '.'), ",DC=");
    return name;
}

std::string PlainUnits(const std::string& name) {
    std::vector<std::string> units;
    for (std::size_t at = name.find("OU="); at != std::string::npos; at = name.find("OU=", at)) {
        at += 3;
        std::string unit;
        while (at < name.size() && name[at] != ',') {
            unit += name[at++];
        }
        if (!units.empty() || !unit.empty()) {  // an empty unit counts only above another one
            units.push_back(unit);
        }
    }
    std::reverse(units.begin(), units.end());
    return Joined(units, "/");
}

void CheckNames(const std::string& domain, const std::string& unit) {
    std::string name = "untouched";
    sys::Domain::BuildDn(domain, unit, name);
    REQUIRE(name == PlainName(domain, unit));

    for (const std::string& text : {name, domain, unit}) {
        std::string path;
        std::string fragment;
        sys::Domain::ExtractOuPath(text, path, false);
        REQUIRE(path == PlainUnits(text));
        sys::Domain::ExtractOuPath(text, fragment, true);
        REQUIRE(fragment == PlainName({}, path));
    }

    // A path of named units comes back as it went.
    const bool isPlainPath = !unit.empty() && unit.front() != '/' && unit.back() != '/' &&
                             !Contains(unit, "//") && !Contains(unit, ",") &&
                             !Contains(unit, "OU=");
    if (isPlainPath && !Contains(domain, "OU=")) {
        std::string path;
        sys::Domain::ExtractOuPath(name, path, false);
        REQUIRE(path == unit);
    }
}

void CheckAddress(const std::string& text) {
    ipc::IPv4Address address;
    try {
        address.Resolve(text);
        if (text.empty() || !util::IsLetter(text.front())) {
            REQUIRE(address.NetworkOrder() == inet_addr(text.c_str()));
        }
    } catch (const ipc::CIPAddressError&) {
        REQUIRE(util::IsLetter(text.at(0)));
        REQUIRE(address == ipc::IPv4Address());
    }
    const ipc::IPv4Address again(address.ToString());
    REQUIRE(again == address);
    for (const char* const other : {"0.0.0.0", "9.1.1.1", "10.0.0.0", "255.255.255.255"}) {
        const ipc::IPv4Address limit(other);
        REQUIRE((address < limit) == (address.HostOrder() < limit.HostOrder()));
        REQUIRE(!(address < limit && limit < address));
        REQUIRE((address == limit) == (!(address < limit) && !(limit < address)));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    machine::State state;
    state.hosts = {{"host", {"10.0.0.1"}}, {"nowhere", {}}};
    native::Reset(std::move(state));
    const std::vector<std::string> lines =
        Split(std::string(reinterpret_cast<const char*>(data), size), '\n');
    CheckNames(lines[0], lines.size() > 1 ? lines[1] : "");
    for (const std::string& line : lines) {
        CheckAddress(line);
    }
    return 0;
}
