// Addresses through the system's Winsock.
#include "common/ipc/IpAddress.h"

#include <winsock2.h>

#include <gtest/gtest.h>

#include <string>

#include "tests/sys/support/Outcome.h"

namespace {

using namespace sys_tests;
using ipc::IPv4Address;

TEST(IPv4AddressOnWinsock, ReadsWhatInetAddrReads) {
    struct Case {
        const char* text;
        const char* shown;
    };
    const Case cases[] = {
        {"192.168.1.20", "192.168.1.20"},
        // inet_addr's short, octal and hexadecimal forms.
        {"10", "0.0.0.10"},
        {"10.1.2", "10.1.0.2"},
        {"010.0.0.1", "8.0.0.1"},
        {"0x7f.0.0.1", "127.0.0.1"},
        // What it rejects is all ones, and nobody can tell.
        {"256.1.1.1", "255.255.255.255"},
        {"1.2.3.4x", "255.255.255.255"},
        {"_host", "255.255.255.255"},
        {"2001:db8::1", "255.255.255.255"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(IPv4Address(std::string(c.text)).ToString(), c.shown) << c.text;
    }
    EXPECT_EQ(IPv4Address(std::string("1.2.3.4")).NetworkOrder(), 0x04030201U);
    EXPECT_LT(IPv4Address(std::string("127.0.0.1")), IPv4Address(std::string("128.0.0.0")));
    // Bytes above 127 are no letters, and none of them may reach past a table's end.
    for (int byte = 1; byte < 256; ++byte) {
        const char first = static_cast<char>(byte);
        const bool letter = (first >= 'A' && first <= 'Z') || (first >= 'a' && first <= 'z');
        EXPECT_TRUE(letter ||
                    OutcomeOf([&] { IPv4Address(std::string(1, first) + "x"); }) == Success())
            << byte;
    }
}

TEST(IPv4AddressOnWinsock, HostNamesAreLookedUp) {
    IPv4Address address(std::string("10.0.0.1"));
    address.Resolve("LOCALHOST");
    EXPECT_EQ(address.ToString(), "127.0.0.1");

    // The name is reserved for never resolving; which error says so depends on the network.
    const Outcome outcome = OutcomeOf([&] { address.Resolve("host.invalid"); });
    EXPECT_EQ(outcome.code, WSAGetLastError());
    EXPECT_GE(outcome.code, WSAHOST_NOT_FOUND);
    EXPECT_LE(outcome.code, WSANO_DATA);
    EXPECT_EQ(outcome, AddressFailure(static_cast<int>(outcome.code)));
    EXPECT_EQ(address.ToString(), "127.0.0.1") << "a failed look-up changed the address";
}

}  // namespace
