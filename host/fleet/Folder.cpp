#include "host/fleet/Folder.h"

#include <filesystem>
#include <map>
#include <system_error>

#include "common/util/Strings.h"
#include "host/HostError.h"
#include "host/Text.h"
#include "host/configure/PrivateFolder.h"
#include "machine/WideText.h"

namespace host::fleet {

namespace {

namespace fs = std::filesystem;

struct NoCaseLess {
    bool operator()(const std::string& left, const std::string& right) const noexcept {
        return util::NoCaseLess(left, right);
    }
};
using Members = std::map<std::string, Member, NoCaseLess>;

/// "examples/fleet" as "examples/fleet/", with the separator that the rest of it has.
std::string AsParent(const std::string& folder) {
    if (folder.ends_with('/') || folder.ends_with('\\') || folder.ends_with(':')) {
        return folder;
    }
    return folder + (folder.find('\\') != std::string::npos ? '\\' : '/');
}

[[noreturn]] void Refuse(const std::string& folder, const std::error_code& error) {
    throw HostError("cannot read " + folder + ": " +
                        DescribeSystemError(static_cast<std::uint32_t>(error.value())),
                    kBadInput);
}

/// One of the two files of a member, found in the folder.
void Take(Members& members, const fs::path& found, std::string Member::*part,
          const std::string& parent) {
    const std::string file = machine::Narrow(found.filename().native());
    const std::string name = machine::Narrow(found.stem().native());
    Member& member = members[name];
    if (member.name.empty() || part == &Member::machine) {
        member.name = name;  // where the two differ in case, as the machine's file is called
    }
    if (configure::ToPath(file) != found.filename()) {
        // The nearest name that can be spelled may be another machine's.
        member.fault = "a name that the system's code page cannot spell";
    } else if (!(member.*part).empty()) {
        // Possible under Wine, whose files come from a system that tells them apart.
        member.fault = member.*part + " and " + parent + file + " differ in case alone";
    }
    member.*part = parent + file;
}

Members ReadFolder(const std::string& folder, bool pairs) {
    const fs::path path = configure::ToPath(folder);
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (fs::exists(status) && !fs::is_directory(status)) {
        throw HostError(folder + " is not a folder", kWrongUsage);
    }
    const std::string parent = AsParent(folder);
    Members members;
    fs::directory_iterator entry(path, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        const std::string ending = machine::Narrow(entry->path().extension().native());
        std::error_code ignored;
        if (entry->is_directory(ignored)) {
            continue;
        }
        if (util::NoCaseEqual(ending, ".json")) {
            Take(members, entry->path(), &Member::machine, parent);
        } else if (pairs && util::NoCaseEqual(ending, ".ini")) {
            Take(members, entry->path(), &Member::file, parent);
        }
    }
    if (error) {
        Refuse(folder, error);
    }
    if (members.empty()) {
        throw HostError(folder + (pairs ? " holds no pair of NAME.ini and NAME.json"
                                        : " holds no machine file NAME.json"),
                        kBadInput);
    }
    return members;
}

std::vector<Member> InOrder(Members&& members) {
    std::vector<Member> list;
    list.reserve(members.size());
    for (auto& [name, member] : members) {
        list.push_back(std::move(member));
    }
    return list;
}

}  // namespace

std::vector<Member> ListPairs(const std::string& folder) {
    Members members = ReadFolder(folder, true);
    for (auto& [name, member] : members) {
        if (member.fault.empty() && member.machine.empty()) {
            member.fault = "there is no machine file " + AsParent(folder) + name + ".json";
        } else if (member.fault.empty() && member.file.empty()) {
            member.fault = "there is no configuration file " + AsParent(folder) + name + ".ini";
        }
    }
    return InOrder(std::move(members));
}

std::vector<Member> ListMachines(const std::string& folder, const std::string& file) {
    Members members = ReadFolder(folder, false);
    for (auto& [name, member] : members) {
        member.file = file;
    }
    return InOrder(std::move(members));
}

}  // namespace host::fleet
