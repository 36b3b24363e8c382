// Host names on the simulated machine.
#include <winsock2.h>

#include <gmock/gmock.h>

#include <string>

#include "common/ipc/IpAddress.h"
#include "tests/sys/simulated/Sweep.h"

namespace {

using namespace sys_tests;
using ipc::IPv4Address;

machine::State WithHosts() {
    machine::State state = machine::DefaultState();
    state.hosts = {{"two.example", {"192.0.2.1", "192.0.2.2"}}, {"none.example", {}}};
    return state;
}

TEST(HostNames, FirstAddressCountsAndNoneLeavesWhatWasThere) {
    Machine machine(WithHosts());
    EXPECT_EQ(IPv4Address(std::string("two.example")).ToString(), "192.0.2.1");
    EXPECT_EQ(IPv4Address(std::string("none.example")).ToString(), "0.0.0.0");
    IPv4Address address(std::string("10.0.0.1"));
    address.Resolve("none.example");
    EXPECT_EQ(address.ToString(), "10.0.0.1");
    EXPECT_EQ(machine.Run([&] { address.Resolve("missing.example"); }),
              AddressFailure(WSAHOST_NOT_FOUND));
    EXPECT_THAT(machine.Calls(), testing::ElementsAre("gethostbyname name=missing.example"));
    EXPECT_EQ(machine.Run([&] { address.Resolve("1.2.3.4"); }), Success());
    EXPECT_THAT(machine.Calls(), testing::IsEmpty()) << "a quad needs no look-up";
}

TEST(HostNames, AFailedLookUpIsAnErrorThatChangesNothing) {
    { IPv4Address(std::string("localhost")); }  // starts Winsock, which happens once
    const Operation operation = [](std::string& outputs) {
        IPv4Address address(std::string("10.0.0.1"));
        const Show show(outputs, [&] { return address.ToString(); });
        address.Resolve("two.example");
    };
    const auto check = [](const FaultyRun& run) {
        EXPECT_EQ(run.outcome, AddressFailure(WSATRY_AGAIN));
        EXPECT_EQ(run.outputs, "10.0.0.1");
    };
    SweepOptions options;
    options.start = WithHosts();
    Sweep(operation, check, options);
}

}  // namespace
