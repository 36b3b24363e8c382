#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "common/sys/WmiQueries.h"

/// The machine that native programs run on: the stand-ins of the platform's functions answer from
/// it and write down in it what they were asked to do. They change none of its settings (files
/// apart), so that a test says itself what a machine looks like after a restart. Its name is PC1,
/// and it is in the group WORKGROUP unless it is a member of a domain.
namespace fake {

/// One IP-enabled adapter.
struct Adapter {
    std::uint32_t index = 0;
    std::string pnpDeviceId;
    std::optional<std::string> locationInformation;  ///< none: the device has no such registry key
    bool dhcpEnabled = false;
    std::vector<std::string> addresses;
    std::vector<std::string> masks;
    std::vector<std::string> gateways;
    std::vector<std::string> dnsServers;
    std::vector<std::string> dnsSuffixes;
    std::string macAddress;
    std::string adapterType;
    std::string manufacturer;
    std::string caption;
    std::string dnsDomain;
    std::string dnsHostName;
    std::string settingId;
    std::optional<std::string> nameServer;  ///< none: the interface has no such registry value
};

/// A PCI adapter at bus, device 0, function 0.
Adapter PciAdapter(std::uint32_t index, int bus);

sys::RouteRecord Route(const std::string& destination, const std::string& mask,
                       const std::string& nextHop, std::uint32_t metric);

struct Machine {
    bool member = false;
    std::string domain;
    std::string dnsDomain;
    std::string unit;  ///< where the computer object is, as a slash path
    std::vector<Adapter> adapters;
    std::vector<sys::RouteRecord> routes;
    /// What resolves: a name and its address, empty for an entry without one.
    std::map<std::string, std::string> hostNames;
    std::set<std::string> files;   ///< paths that count as existing files
    bool hasCryptoLibrary = true;  ///< its cipher writes a text backwards

    /// Called when the function of that name, or any function, is called, after the call was
    /// written down; may throw.
    std::map<std::string, std::function<void()>> onCall;
    std::function<void()> onEveryCall;
    /// What methods and programs return; 0 where nothing is said.
    std::map<std::string, std::uint32_t> returns;

    /// Calls that read, and calls that change something, each in order: "setGateways(7, 10.0.0.1)".
    std::vector<std::string> queries;
    std::vector<std::string> changes;
    std::string heldPassword;  ///< what sys::Domain holds now
    int loadedLibraries = 0;
};

/// The one machine of the process.
Machine& TheMachine();

/// A new machine. (The adapter tree that the module keeps for the life of the process stays.)
Machine& Reset();

/// For the stand-ins: writes a call down and runs what is planned for the function. `arguments` is
/// the text between the brackets.
void NoteQuery(const std::string& function, const std::string& arguments = {});
void NoteChange(const std::string& function, const std::string& arguments = {});
/// What the function is to return.
std::uint32_t ReturnOf(const std::string& function);

}  // namespace fake
