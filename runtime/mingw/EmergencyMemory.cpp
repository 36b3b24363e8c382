// The names are the library's.
// NOLINTBEGIN(bugprone-reserved-identifier, readability-identifier-naming)
namespace __gnu_cxx {

/// Of libstdc++: gives back what the library keeps for errors that are thrown when no memory is
/// left. It takes 73 KB when the module is loaded.
void __freeres();

}  // namespace __gnu_cxx
// NOLINTEND(bugprone-reserved-identifier, readability-identifier-naming)

namespace {

/// Without it each life of the module would leave that memory in the agent.
struct EmergencyMemory {
    ~EmergencyMemory() { __gnu_cxx::__freeres(); }
};

// Made first, so that it goes last.
[[gnu::init_priority(101)]] const EmergencyMemory kEmergencyMemory;

}  // namespace
