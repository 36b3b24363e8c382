// What "snapshot" makes of a machine: this one, and simulated ones of which not all can be read.
#include <windows.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "host/snapshot/Snapshot.h"
#include "machine/MachineFile.h"
#include "machine/Simulation.h"
#include "machine/model/RegistryView.h"
#include "tests/host/configure/Support.h"

namespace {

using namespace configure_tests;

TEST(Snapshot, IsAMachineFileOfThisMachineAndCanBePlannedOn) {
    char name[256] = "";
    DWORD size = sizeof name;
    ASSERT_NE(GetComputerNameA(name, &size), 0);
    const Files files;
    const auto written = host_tests::RunHost({"snapshot", "-o", "snapshot.json"});
    EXPECT_EQ(written.exitCode, 0U) << written.notes;
    EXPECT_EQ(written.data, "wrote snapshot.json\n");
    const machine::State state = machine::ParseState(ReadFile("snapshot.json"));
    EXPECT_EQ(state.computerName, name);
    EXPECT_FALSE(state.membership.member && state.membership.dnsDomain.empty());
    for (const std::string format : {"text", "json"}) {
        const auto printed = host_tests::RunHost({"snapshot", "--format", format});
        EXPECT_EQ(printed.exitCode, 0U);
        EXPECT_EQ(machine::ParseState(printed.data), state) << format;
        EXPECT_EQ(printed.notes.find("Not seen") != std::string::npos, format == "text");
    }
    const std::string config = files.Write("planned.ini", "[Networking]\nComputerName=PC-NEW\n");
    const Json onFile = ConfigureJson({config, "--machine", "snapshot.json", "--plan"}, 2);
    const Json here = ConfigureJson({config, "--this-machine", "--plan"}, 2);
    EXPECT_EQ(onFile.at("passes"), here.at("passes"));
    EXPECT_EQ(SettingOf(here.at("passes")[0], "computer-name").at("fate"), "change");
    EXPECT_TRUE(std::filesystem::exists(config));
}

host::snapshot::Snapshot Take(const machine::State& state, const std::string& faults = {}) {
    machine::Simulation simulation(state);
    simulation.Attach(GetModuleHandleA(nullptr));
    simulation.SetFaultPlan(machine::FaultPlan::Parse(faults));
    return host::snapshot::TakeSnapshot();
}

TEST(Snapshot, HoldsWhatTheModuleCanSee) {
    machine::State state = machine::DefaultState();
    state.adapters[0].ipAddress->push_back("fe80::2");
    state.adapters[0].ipSubnet->push_back("64");
    state.adapters[0].gateways = {{"198.51.100.9", "192.0.2.1", "fe80::1"}};
    state.routes.push_back({"0.0.0.0", "0.0.0.0", "198.51.100.9", -1});
    state.adapters[1].ipAddress->push_back("198.51.100.21");
    state.adapters[1].ipSubnet->push_back("255.255.255.0");
    state.dnsSuffixes = {"own.example", "b.example"};
    state.registry = {{machine::model::kDnsPolicyKey,
                       {machine::RegistryValue::Text("SearchList", "policy.example")}}};
    machine::Adapter unplugged;
    unplugged.index = 9;
    unplugged.pnpDeviceId = "PCI\\VEN_8086&DEV_9\\1";
    unplugged.pciLocation = "PCI bus 9, device 0, function 0";
    unplugged.dhcpEnabled = true;
    unplugged.condition = machine::Condition::kUnplugged;
    state.adapters.push_back(unplugged);
    machine::State seen = state;
    seen.domains.clear();
    seen.hosts.clear();
    seen.adapters[1].dhcpLease.reset();
    for (machine::Adapter& adapter : seen.adapters) {
        adapter.connectionName.clear();
    }
    const host::snapshot::Snapshot taken = Take(state);
    EXPECT_EQ(machine::FormatState(taken.state), machine::FormatState(seen));
    EXPECT_EQ(machine::ParseState(machine::FormatState(taken.state)), taken.state);
    EXPECT_THAT(taken.notes, testing::ElementsAre(testing::StartsWith("Adapter 9: has no IP")));
}

TEST(Snapshot, NamesAdapterPropertyAndCallOfWhatCannotBeRead) {
    const std::string key = "HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\";
    const machine::State state = machine::DefaultState();
    machine::State odd = state;
    odd.adapters[1].pciLocation.reset();
    machine::State rowless = state;
    rowless.routes.clear();
    struct Case {
        const char* faults;
        const machine::State& state;
        std::vector<std::string> notes;  // as they begin
    };
    const Case cases[] = {
        {"Next#1=5", state, {"The computer's name cannot be read: the query gives 0x80070005"}},
        {"Next#4=0x80041003",
         state,
         {"The list of adapters cannot be read: the query gives 0x80041003 (WMI: access denied)"}},
        {"Next#15",
         state,
         {"Adapter 1: DNSDomain and DNSHostName cannot be read: the query gives 0x80041001"}},
        {"Get#7=0x80041002",
         state,
         {"Adapter 1: Caption cannot be read: Get gives 0x80041002 (WMI: not found)"}},
        {"RegOpenKeyExA#1=5,RegOpenKeyExA#2=2,RegOpenKeyExA#4=5",
         state,
         {"Adapter 1: LocationInformation of " + key + "Enum\\" + *state.adapters[0].pnpDeviceId +
              " cannot be read: RegOpenKeyExA gives 5 (",
          "Adapter 2: NameServer of " + key + "Services\\Tcpip\\Parameters\\Interfaces\\" +
              *state.adapters[1].settingId + " cannot be read: RegOpenKeyExA gives 5 ("}},
        {"", rowless, {"A gateway set by hand has no persistent route here"}},
        {"LsaOpenPolicy", state, {"The membership cannot be read: LsaOpenPolicy gives 5 ("}},
        {"",
         odd,
         {"Adapter 2: LocationInformation of " + key + "Enum\\" + *state.adapters[1].pnpDeviceId +
          " cannot be read: RegQueryValueExA finds no such value, or may not read it"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.faults);
        const host::snapshot::Snapshot taken = Take(c.state, c.faults);
        EXPECT_EQ(taken.notes.size(), c.notes.size());
        for (std::size_t i = 0; i < std::min(c.notes.size(), taken.notes.size()); ++i) {
            EXPECT_THAT(taken.notes[i], testing::StartsWith(c.notes[i]));
        }
    }
}

}  // namespace
