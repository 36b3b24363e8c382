// What a machine has now, in the words in which settings ask for it. Texts are in the system code
// page.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/reading/Settings.h"
#include "machine/State.h"

namespace host::configure {

using reading::Setting;

/// PCI 3/0/0 "Ethernet 2" (index 7)
std::string AdapterLabel(const machine::Adapter& adapter);

/// The machine's adapter; null when it has none of that index.
const machine::Adapter* AdapterOf(const machine::State& state, std::optional<std::uint32_t> index);

/// "192.0.2.10/255.255.255.0" for each address.
std::vector<std::string> AddressesOf(const machine::Adapter& adapter);

/// Every persistent route, the one too that the module leaves out of its comparison.
std::vector<std::string> AllRoutes(const machine::State& state);

/// That one.
std::optional<std::string> FirstDefaultRoute(const machine::State& state);

/// "workgroup SALES", "domain corp.example"
std::string MembershipText(const machine::Membership& membership);

/// The container of a computer's object in a domain: "East/Sales", "Computers"; empty where the
/// domain is not known or has no such object.
std::string UnitOf(const machine::State& state, const std::string& domain,
                   const std::string& computer);

/// The present value that a setting of the kind is compared with; none where it is an adapter's and
/// the machine has no such adapter.
std::optional<std::vector<std::string>> CurrentValues(const machine::State& state,
                                                      Setting::Kind kind,
                                                      std::optional<std::uint32_t> index);

/// A setting's wish in the same words.
std::vector<std::string> WantedValues(const Setting& setting);

/// "10.0.0.1, 10.0.0.2"; "none" for an empty list.
std::string ListText(const std::vector<std::string>& values);

/// The same; "unknown" where there is no list.
std::string ListText(const std::optional<std::vector<std::string>>& values);

}  // namespace host::configure
