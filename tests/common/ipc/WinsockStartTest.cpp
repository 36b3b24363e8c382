// A program of its own: Winsock is started once in a process, and here the start fails.
#include <winsock2.h>

#include <gmock/gmock.h>

#include <string>

#include "common/ipc/IpAddress.h"
#include "tests/common/sys/Machine.h"

namespace {

using namespace sys_tests;
using testing::ElementsAre;

TEST(WinsockStart, AFailedStartIsNeitherReportedNorTriedAgain) {
    Machine machine;
    machine.Fail("WSAStartup");
    ipc::IPv4Address address;
    EXPECT_EQ(machine.Run([&] { address.Resolve("1.2.3.4"); }), Success());
    EXPECT_THAT(machine.Texts(), testing::IsEmpty()) << "started before there was a name";

    // What a look-up then gives is the system's affair: Windows refuses it, Wine does not mind.
    const auto look = [&] { address.Resolve("gateway.lab.example"); };
    const auto expected = testing::AnyOf(Success(), AddressFailure(WSANOTINITIALISED));
    EXPECT_THAT(machine.Run(look), expected);
    EXPECT_THAT(machine.Texts(),
                ElementsAre("WSAStartup version=0x202", "gethostbyname name=gateway.lab.example"));
    machine.Fail("");
    EXPECT_THAT(machine.Run(look), expected);
    EXPECT_THAT(machine.Texts(), ElementsAre("gethostbyname name=gateway.lab.example"));
}

}  // namespace
