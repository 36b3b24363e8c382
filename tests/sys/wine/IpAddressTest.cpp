// Addresses through the system's Winsock.
#include "common/ipc/IpAddress.h"

#include <winsock2.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "common/ipc/WinSock.h"
#include "tests/sys/support/Outcome.h"

namespace {

using ipc::IPv4Address;

TEST(IPv4AddressOnWinsock, ReadsWhatInetAddrReads) {
    struct Case {
        const char* text;
        const char* shown;
    };
    const Case cases[] = {
        {"0.0.0.0", "0.0.0.0"},
        {"192.168.1.20", "192.168.1.20"},
        {"255.255.255.255", "255.255.255.255"},
        // inet_addr's short, octal and hexadecimal forms.
        {"10", "0.0.0.10"},
        {"10.1", "10.0.0.1"},
        {"10.1.2", "10.1.0.2"},
        {"010.0.0.1", "8.0.0.1"},
        {"0x7f.0.0.1", "127.0.0.1"},
        // What it rejects is all ones, and nobody can tell.
        {"256.1.1.1", "255.255.255.255"},
        {"1.2.3.4.5", "255.255.255.255"},
        {"1.2.3.4x", "255.255.255.255"},
        {"-1", "255.255.255.255"},
        {"_host", "255.255.255.255"},
        {"2001:db8::1", "255.255.255.255"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(IPv4Address(std::string(c.text)).ToString(), c.shown) << c.text;
    }
    EXPECT_EQ(IPv4Address().ToString(), "0.0.0.0");
    EXPECT_EQ(IPv4Address(std::string("1.2.3.4")).NetworkOrder(), 0x04030201U);
    EXPECT_EQ(IPv4Address(std::string("1.2.3.4")).HostOrder(), 0x01020304U);
}

TEST(IPv4AddressOnWinsock, OnlyALetterMakesAHostName) {
    // Bytes above 127 are no letters, and none of them may reach past a table's end.
    for (int byte = 1; byte < 256; ++byte) {
        const char first = static_cast<char>(byte);
        const bool letter = (first >= 'A' && first <= 'Z') || (first >= 'a' && first <= 'z');
        if (letter) {
            continue;
        }
        EXPECT_EQ(sys_tests::OutcomeOf([&] { IPv4Address(std::string(1, first) + "x"); }),
                  sys_tests::Success())
            << byte;
    }
}

TEST(IPv4AddressOnWinsock, HostNamesAreLookedUp) {
    EXPECT_EQ(IPv4Address(std::string("localhost")).ToString(), "127.0.0.1");
    IPv4Address address(std::string("10.0.0.1"));
    address.Resolve("LOCALHOST");
    EXPECT_EQ(address.ToString(), "127.0.0.1");

    // The name is reserved for never resolving; which error says so depends on the network.
    sys_tests::Outcome outcome = sys_tests::OutcomeOf([&] { address.Resolve("host.invalid"); });
    EXPECT_EQ(outcome.code, WSAGetLastError());
    EXPECT_GE(outcome.code, WSAHOST_NOT_FOUND);
    EXPECT_LE(outcome.code, WSANO_DATA);
    EXPECT_EQ(outcome, sys_tests::AddressFailure(static_cast<int>(outcome.code)));
    EXPECT_EQ(address.ToString(), "127.0.0.1") << "a failed look-up changed the address";
}

TEST(IPv4AddressOnWinsock, OrderIsThatOfTheQuads) {
    const std::vector<std::string> ordered = {"0.0.0.0",     "9.1.1.1",      "10.0.0.0",
                                              "127.0.0.1",   "128.0.0.1",    "192.168.1.1",
                                              "192.168.1.3", "192.168.1.20", "255.255.255.255"};
    for (std::size_t i = 0; i < ordered.size(); ++i) {
        for (std::size_t j = 0; j < ordered.size(); ++j) {
            const IPv4Address left(ordered[i]);
            const IPv4Address right(ordered[j]);
            EXPECT_EQ(left < right, i < j) << ordered[i] << " " << ordered[j];
            EXPECT_EQ(left == right, i == j);
            EXPECT_EQ(left != right, i != j);
        }
    }
}

}  // namespace
