// Host names on the simulated machine.
#include <winsock2.h>

#include <windows.h>

#include <gmock/gmock.h>

#include <string>

#include "common/ipc/IpAddress.h"
#include "tests/common/sys/Machine.h"

namespace {

using namespace sys_tests;
using ipc::IPv4Address;
using testing::ElementsAre;
using testing::IsEmpty;

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
    EXPECT_THAT(machine.Texts(), ElementsAre("gethostbyname name=missing.example"));
    EXPECT_EQ(address.ToString(), "10.0.0.1");
    machine.Fail("gethostbyname");
    EXPECT_EQ(machine.Run([&] { address.Resolve("two.example"); }), AddressFailure(WSATRY_AGAIN));
    EXPECT_EQ(address.ToString(), "10.0.0.1");
    EXPECT_EQ(machine.Run([&] { address.Resolve("1.2.3.4"); }), Success());
    EXPECT_THAT(machine.Texts(), IsEmpty()) << "a quad needs no look-up";
}

}  // namespace
