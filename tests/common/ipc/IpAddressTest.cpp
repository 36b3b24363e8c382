#include "common/ipc/IpAddress.h"

#include <gtest/gtest.h>

#include <string>

#include "common/err/GeneralError.h"
#include "common/ipc/RouteKey.h"
#include "common/util/Strings.h"

namespace {

using ipc::IPv4Address;
using ipc::RouteKey;

TEST(IPv4Address, ReadsDottedQuadsAndNeverThrowsOnADigit) {
    struct AddressCase {
        std::string text;
        std::uint32_t number;
        std::string shown;
    };
    const AddressCase cases[] = {
        {"0.0.0.0", 0, "0.0.0.0"},
        {"10.1.2.3", 0x0A010203, "10.1.2.3"},
        {"255.255.255.255", 0xFFFFFFFF, "255.255.255.255"},
        {"192.168.1.256", 0xFFFFFFFF, "255.255.255.255"},
        {"1.2.3.4.5", 0xFFFFFFFF, "255.255.255.255"},
        {"1.2.3.4x", 0xFFFFFFFF, "255.255.255.255"},
        {"2001:db8::1", 0xFFFFFFFF, "255.255.255.255"},
        {"10.1", 0x0A000001, "10.0.0.1"},
        {"0x7f.1", 0x7F000001, "127.0.0.1"},
        {"010.0.0.1", 0x08000001, "8.0.0.1"},
    };
    for (const AddressCase& test : cases) {
        const IPv4Address address(test.text);
        EXPECT_EQ(address.HostOrder(), test.number) << test.text;
        EXPECT_EQ(address.ToString(), test.shown) << test.text;
        EXPECT_TRUE(IPv4Address(address.ToString()) == address) << test.text;
    }
    EXPECT_EQ(IPv4Address().ToString(), "0.0.0.0");
    EXPECT_EQ(IPv4Address("1.2.3.4").NetworkOrder(), 0x04030201U);
    // Whatever begins with no letter of the classic locale is no name to be looked up.
    for (int byte = 1; byte < 256; ++byte) {
        const auto first = static_cast<char>(byte);
        if (!util::IsLetter(first)) {
            EXPECT_NO_THROW(IPv4Address(std::string(1, first) + "x")) << byte;
        }
    }
}

TEST(IPv4Address, OrdersAsTheQuadsReadAndCopiesTheAddress) {
    const char* const ascending[] = {"9.1.1.1",      "10.0.0.0",    "127.255.0.0",
                                     "192.168.1.20", "192.168.2.0", "255.0.0.0"};
    for (const char* const& left : ascending) {
        for (const char* const& right : ascending) {
            EXPECT_EQ(IPv4Address(left) < IPv4Address(right), &left < &right) << left << right;
            EXPECT_EQ(IPv4Address(left) != IPv4Address(right), &left != &right) << left << right;
        }
    }
    IPv4Address address("1.2.3.4");
    const IPv4Address copy(address);
    address.Resolve("5.6.7.8");
    EXPECT_EQ(copy.ToString(), "1.2.3.4");
    address = copy;
    EXPECT_TRUE(address == copy);
}

TEST(RouteKey, OrdersByEachFieldInTurnAndTheMetricSigned) {
    const auto key = [](const char* destination, const char* mask, const char* gateway,
                        std::int32_t metric) {
        return RouteKey{IPv4Address(destination), IPv4Address(mask), IPv4Address(gateway), metric};
    };
    const RouteKey ascending[] = {
        key("9.0.0.0", "255.0.0.0", "9.1.1.1", 9),    key("10.0.0.0", "0.0.0.0", "9.1.1.1", 9),
        key("10.0.0.0", "255.0.0.0", "9.1.1.1", 1),   key("10.0.0.0", "255.0.0.0", "10.1.1.1", -1),
        key("10.0.0.0", "255.0.0.0", "10.1.1.1", 0),  key("10.0.0.0", "255.0.0.0", "10.1.1.1", 2),
        key("10.0.0.0", "255.255.0.0", "1.1.1.1", 0),
    };
    for (const RouteKey& left : ascending) {
        for (const RouteKey& right : ascending) {
            EXPECT_EQ(left < right, &left < &right)
                << &left - ascending << " " << &right - ascending;
        }
    }
}

}  // namespace
