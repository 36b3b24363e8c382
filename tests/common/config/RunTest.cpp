#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "common/config/ConfigBuilder.h"
#include "common/config/command/ConfigureNic.h"
#include "common/config/command/Reboot.h"
#include "common/config/command/Sleep.h"
#include "common/err/GeneralError.h"
#include "tests/common/config/EventWords.h"
#include "tests/native/CommandText.h"
#include "tests/native/OnMachine.h"

namespace {

using fake::OnMachine;
using fake::RecordingLog;
using testing::ElementsAre;

const std::string kRun = "2 ConfigBuilder::RunConfig(): about to execute class config::command::";
const std::string kNicRun = "2 ConfigureNic::Execute(): about to execute class config::command::";
const std::string kIndex =
    "2 ConfigureNic::Execute(): NIC index (Win32_NetworkAdapterConfiguration.Index)=";

class Run : public OnMachine {
protected:
    RecordingLog log;
    config::ConfigBuilder builder{log};
};

TEST_F(Run, GoesInOrderToTheEndAndDoesNotAskWhatIsNeeded) {
    bool reboot = true;
    config_tests::Send(builder, "WORKGROUP(B) WORKGROUP(workgroup)");
    EXPECT_TRUE(builder.RunConfig(reboot));
    EXPECT_FALSE(reboot);
    EXPECT_EQ(TakeChanges(), "JoinWorkgroup(B, :); JoinWorkgroup(workgroup, :)");
    EXPECT_THAT(log.lines, ElementsAre(kRun + "JoinWorkgroup (Workgroup=B {User=})",
                                       kRun + "JoinWorkgroup (Workgroup=workgroup {User=})"));
}

TEST_F(Run, StopsAtTheFirstMarkerWithoutALine) {
    bool reboot = false;
    for (const char* const name : {"A", "B"}) {
        config_tests::Send(builder, util::Format("WORKGROUP(%s)", name));
        builder.AppendCommand(std::make_unique<config::command::Reboot>());
    }
    EXPECT_FALSE(builder.RunConfig(reboot));
    EXPECT_TRUE(reboot);
    EXPECT_EQ(TakeChanges(), "JoinWorkgroup(A, :)");
    EXPECT_EQ(log.lines.size(), 1U);
}

TEST_F(Run, StopsAtAFailureAndSaysNothingOfARestart) {
    machine.returns["renameComputer"] = 5;
    config_tests::Send(builder, "WORKGROUP(A) NAME(PC9) WORKGROUP(B)");
    for (const bool before : {false, true}) {
        bool reboot = before;
        EXPECT_THROW(builder.RunConfig(reboot), config::ConfigError);
        EXPECT_EQ(reboot, before);
        EXPECT_EQ(TakeChanges(), "JoinWorkgroup(A, :); renameComputer(PC9, :)");
    }
}

TEST_F(Run, OfAnAdapterSkipsWhatItHasAndLogsTheRest) {
    fake::Adapter& adapter = Adapter(7);
    adapter.addresses = {"10.0.0.9"};
    adapter.dnsServers = {"10.0.0.53"};
    config_tests::Send(builder,
                       "+NIC(lan) STATIC +IP ADDRESS(10.0.0.1) MASK(255.0.0.0) - DNS(10.0.0.53) "
                       "SUFFIX(100%n) -");
    auto& nic = dynamic_cast<config::command::ConfigureNic&>(*builder.LastCommand());
    nic.Append(std::make_unique<config::command::Sleep>(8000));
    nic.SetNicIndex(7);
    bool reboot = true;
    EXPECT_TRUE(builder.RunConfig(reboot));
    EXPECT_EQ(TakeChanges(),
              "enableStatic(7, 10.0.0.1, 255.0.0.0); setDnsSuffixSearchOrder(100%n); Pause(8000)");
    EXPECT_THAT(
        log.lines,
        ElementsAre(kRun + "ConfigureNic ()", kIndex + "7",
                    kNicRun + "SetStatic (IP and Subnet Masks: {ip=10.0.0.1,mask=255.0.0.0})",
                    kNicRun + "SetDnsSuffix (DNS Suffixes=100%%n)",
                    kNicRun + "Sleep (Duration=8000 milliseconds)"));
    EXPECT_THAT(machine.queries,
                ElementsAre("getDhcpEnabled(7)", "getIpAddressAndMask(7)",
                            "getDnsServersAndSuffixes(7)", "getDnsServersAndSuffixes(7)"));
}

TEST_F(Run, OfAnAdapterWithoutIndexIsAnError) {
    config_tests::Send(builder, "+NIC(lan) DHCP -");
    bool reboot = true;
    try {
        builder.RunConfig(reboot);
        ADD_FAILURE() << "no error";
    } catch (const config::ConfigError&) {
        EXPECT_EQ(fake::ErrorText(),
                  "common\\config\\command\\ConfigureNic:68(0) ConfigureNic has not been been "
                  "associated with a nic index");
    }
    EXPECT_THAT(log.lines, ElementsAre(kRun + "ConfigureNic ()"));
}

TEST_F(Run, ShowsAccountsAndNoPassword) {
    config_tests::Send(builder,
                       "DOMAIN(d%s.e) OU(East) USER(joe%n) PASSWORD(secret) WORKGROUP(W) "
                       "PASSWORD(secret) OU(U) PASSWORD(secret) NAME(PC%d) PASSWORD(secret) "
                       "+ROUTE RGW(10.0.0.1) -");
    bool reboot = true;
    EXPECT_TRUE(builder.RunConfig(reboot));
    EXPECT_EQ(TakeChanges(),
              "JoinDomainAndOu(d%s.e, East, joe%n:secret); JoinWorkgroup(W, :secret); MoveOu(U, "
              ":secret); renameComputer(PC%d, :secret); RunCommand(route -p ADD 255.255.255.255 "
              "mask 255.255.255.255 10.0.0.1 METRIC 0)");
    EXPECT_THAT(
        log.lines,
        ElementsAre(kRun + "JoinDomain (DNS Domain=d%%s.e, Windows Domain= {User=joe%%n})",
                    kRun + "JoinWorkgroup (Workgroup=W {User=})", kRun + "MoveOu (OU=U)",
                    kRun + "ChangeCompName (Name=PC%%d {User=})", kRun + "SetStaticRoute ()"));
}

}  // namespace
