// The queries and methods against the system's own WMI. What it should say about the adapters
// comes from GetAdaptersAddresses, which knows them by another road.
#include <winsock2.h>

#include <ws2tcpip.h>

#include <iphlpapi.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "common/sys/WmiMethods.h"
#include "common/sys/WmiQueries.h"
#include "common/util/Strings.h"
#include "tests/sys/support/Outcome.h"

namespace {

using namespace sys_tests;

constexpr auto kNotFound = static_cast<std::uint32_t>(0x80041002);  // WBEM_E_NOT_FOUND
constexpr std::uint32_t kNoAdapter = 987654;
constexpr std::size_t kGuidDigits = 25;  // as far as the system gives both the same ones

struct KnownAdapter {
    std::uint32_t index;
    std::string guid;
    std::string mac;
};

std::vector<KnownAdapter> KnownAdapters() {
    std::vector<unsigned char> buffer(1 << 16);
    auto size = static_cast<ULONG>(buffer.size());
    auto* const first = reinterpret_cast<IP_ADAPTER_ADDRESSES*>(buffer.data());
    std::vector<KnownAdapter> adapters;
    if (GetAdaptersAddresses(AF_UNSPEC, 0, nullptr, first, &size) != ERROR_SUCCESS) {
        return adapters;
    }
    for (const IP_ADAPTER_ADDRESSES* adapter = first; adapter != nullptr; adapter = adapter->Next) {
        if (adapter->IfType == IF_TYPE_SOFTWARE_LOOPBACK) {
            continue;
        }
        std::string mac;
        for (ULONG i = 0; i < adapter->PhysicalAddressLength; ++i) {
            mac += util::Format("%s%02X", i == 0 ? "" : ":", adapter->PhysicalAddress[i]);
        }
        adapters.push_back({adapter->IfIndex, adapter->AdapterName, mac});
    }
    return adapters;
}

TEST(WmiOfTheSystem, TellsWhatTheSystemTellsElsewhere) {
    char expected[MAX_COMPUTERNAME_LENGTH + 1];
    DWORD size = sizeof expected;
    ASSERT_NE(GetComputerNameA(expected, &size), 0);
    std::string name;
    EXPECT_EQ(sys::getComputerName(name), S_OK);
    EXPECT_TRUE(util::NoCaseEqual(name, expected)) << name;

    const std::vector<KnownAdapter> known = KnownAdapters();
    std::vector<std::uint32_t> indexes;
    EXPECT_EQ(sys::getIpEnabledAdapters(indexes), S_OK);
    EXPECT_TRUE(std::ranges::is_permutation(indexes, known, {}, {}, &KnownAdapter::index));
    for (const KnownAdapter& adapter : known) {
        SCOPED_TRACE(adapter.index);
        std::string text;
        EXPECT_EQ(sys::getMacAddress(adapter.index, text), S_OK);
        EXPECT_TRUE(util::NoCaseEqual(text, adapter.mac)) << text << " " << adapter.mac;
        EXPECT_EQ(sys::getSettingId(adapter.index, text), S_OK);
        EXPECT_EQ(text.substr(0, kGuidDigits), adapter.guid.substr(0, kGuidDigits));
        EXPECT_EQ(sys::getPnpDeviceId(adapter.index, text), S_OK);
        EXPECT_TRUE(text.starts_with("PCI\\VEN_")) << text;
        std::string other;
        EXPECT_EQ(sys::getAdapterTypeAndManufacturer(adapter.index, text, other), S_OK);
        EXPECT_TRUE(!text.empty() && !other.empty());
        bool dhcp = false;
        EXPECT_EQ(sys::getDhcpEnabled(adapter.index, dhcp), S_OK);
        EXPECT_TRUE(dhcp) << "what this system always says";
        std::vector<ipc::IPv4Address> addresses;
        EXPECT_EQ(sys::getGateways(adapter.index, addresses), S_OK);

        // It lacks the caption, and the second one of two properties: its result is the query's.
        const auto notFound = static_cast<sys::Result>(kNotFound);
        text = "kept";
        EXPECT_EQ(sys::getCaption(adapter.index, text), notFound);
        EXPECT_EQ(text, "kept");
        std::vector<std::string> suffixes;
        EXPECT_EQ(sys::getDnsServersAndSuffixes(adapter.index, addresses, suffixes), notFound);
        EXPECT_TRUE(suffixes.empty());
        EXPECT_EQ(sys::getDnsDomainAndHostName(adapter.index, text, other), S_OK) << "null or not";
        // A null list is no array, an IPv6 address that begins with a letter is no host.
        ipc::IPv4Address address;
        const Outcome read =
            OutcomeOf([&] { sys::getIpAddressAndMask(adapter.index, address, address); });
        EXPECT_TRUE(read == Success() ||
                    read == RefusedArgument("Invalid argument passed to attach()") ||
                    read.starts_with("ipc::CIPAddressError"))
            << read;
    }
}

TEST(WmiOfTheSystem, AQueryWithoutRowsSucceedsAndChangesNothing) {
    std::string text = "kept";
    std::string other = "kept";
    EXPECT_EQ(sys::getAdapterTypeAndManufacturer(kNoAdapter, text, other), S_OK);
    EXPECT_EQ(text + other, "keptkept");
    std::vector<ipc::IPv4Address> addresses(1);
    EXPECT_EQ(sys::getGateways(kNoAdapter, addresses), S_OK);
    EXPECT_EQ(addresses.size(), 1U);
    // The system knows the class of the persisted routes, and has none.
    std::vector<sys::RouteRecord> routes;
    EXPECT_EQ(sys::getStaticRoutes(routes), S_OK);
    EXPECT_TRUE(routes.empty());
}

TEST(WmiOfTheSystem, AMethodThatItLacksIsTheOperationsError) {
    struct Case {
        std::function<void()> call;
        const char* message;
        int line;
    };
    const Case cases[] = {
        {[] { sys::renameComputer("NEW", "user", "secret"); },
         "Wmi method failed to set computer name", 1219},
        {[] { sys::enableDhcp(kNoAdapter); }, "Wmi method failed to enable DHCP", 1289},
        {[] { sys::setDnsSuffixSearchOrder({"lab.example"}); },
         "Wmi method failed to configure DNS suffixes", 1680},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(OutcomeOf(c.call), WmiFailure(c.message, c.line, kNotFound));
    }
}

}  // namespace
