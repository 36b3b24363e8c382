// Host names through the system's Winsock.
#include "common/ipc/IpAddress.h"

#include <winsock2.h>

#include <gtest/gtest.h>

#include <string>

#include "tests/sys/support/Outcome.h"

namespace {

using namespace sys_tests;
using ipc::IPv4Address;

TEST(IPv4AddressOnWinsock, HostNamesAreLookedUp) {
    IPv4Address address(std::string("10.0.0.1"));
    address.Resolve("LOCALHOST");
    EXPECT_EQ(address.ToString(), "127.0.0.1");

    // The name is reserved for never resolving; which error says so depends on the network.
    const Outcome outcome = OutcomeOf([&] { address.Resolve("host.invalid"); });
    EXPECT_EQ(outcome, AddressFailure(WSAGetLastError()));
    EXPECT_GE(WSAGetLastError(), WSAHOST_NOT_FOUND);
    EXPECT_LE(WSAGetLastError(), WSANO_DATA);
    EXPECT_EQ(address.ToString(), "127.0.0.1") << "a failed look-up changed the address";
}

}  // namespace
