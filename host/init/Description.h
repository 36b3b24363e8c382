// What a configuration file can say of a machine, and what it cannot.
#pragma once

#include <string>
#include <vector>

#include "machine/State.h"

namespace host::init {

using Texts = std::vector<std::string>;

struct AdapterDescription {
    std::string adapter;  ///< PCI 2/1/0 "Ethernet" (index 1)
    std::string label;    ///< what "Description" says
    bool dhcp = false;
    Texts addresses;  ///< with `dhcp` what it has given; so are masks and gateways
    Texts masks;
    Texts gateways;
    Texts servers;         ///< those to set; where there are none the adapter keeps what it has
    Texts presentServers;  ///< those that it keeps then
    Texts remarks;
    /// Why no section can say it; empty where one can. Sections take the adapters in turn, so none
    /// says the adapters after it either.
    std::string obstacle;
};

/// A part of "[Networking]".
struct Identity {
    std::string name;
    machine::Membership membership;
    std::string unit;  ///< as a path from the top down; empty where it is not known, or no unit
    // What may stand in the file: the rest waits for an account, or cannot be written.
    bool saysName = false;
    bool saysMembership = false;
    bool saysUnit = false;
    Texts remarks;
};

struct Description {
    Identity identity;
    std::vector<AdapterDescription> adapters;  ///< those that sections are bound to, in that order
    Texts suffixes;  ///< none: they cannot be said, and sections end before them
    Texts suffixRemarks;
    std::vector<machine::PersistedRoute> routes;  ///< that the module would compare
    bool saysRoutes = false;                      ///< they are left alone otherwise

    /// How many of the adapters sections can say.
    std::size_t Sayable() const;
};

/// The machine `wanted` in the words of a file that is run on the machine `present`, so that it
/// makes of the one the other, as far as the language goes. Where the two are one the file changes
/// nothing.
Description Describe(const machine::State& wanted, const machine::State& present);

}  // namespace host::init
