// The machines that stand in a folder.
#pragma once

#include <string>
#include <vector>

namespace host::fleet {

/// A machine and the file that is to be planned for it. Paths are as people would type them.
struct Member {
    std::string name;     ///< of its files, without ".ini" and ".json"
    std::string file;     ///< the configuration file
    std::string machine;  ///< the machine file
    std::string fault;    ///< why nothing can be planned; empty where something can
};

/// The pairs NAME.ini and NAME.json of the folder, by name; a file without its partner is a member
/// with a fault. Throws HostError for what is no folder, cannot be read or holds neither.
std::vector<Member> ListPairs(const std::string& folder);

/// The machine files NAME.json of the folder, by name, each for the one configuration file. Throws
/// HostError as ListPairs does.
std::vector<Member> ListMachines(const std::string& folder, const std::string& file);

}  // namespace host::fleet
