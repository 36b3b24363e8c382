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

namespace config_tests {

/// Notes its execution and its end; throws on execution when told to.
class Probe : public config::command::IConfigureCommand {
public:
    Probe(std::string name, std::vector<std::string>& notes, bool fails = false)
        : name_(std::move(name)), notes_(notes), fails_(fails) {}
    ~Probe() override { notes_.emplace_back("end of " + name_); }
    Probe(const Probe&) = delete;
    Probe& operator=(const Probe&) = delete;

    void Execute() override {
        notes_.push_back(name_);
        if (fails_) {
            throw config::ConfigError("Probe", "failed", 1, 2, 3);
        }
    }
    void Reserved() override { notes_.emplace_back("Reserved"); }
    bool IsNeeded() override { return false; }  // the run does not ask
    std::string GetDescription() override { return name_; }

private:
    std::string name_;
    std::vector<std::string>& notes_;
    bool fails_;
};

}  // namespace config_tests

namespace {

using config_tests::Probe;
using fake::OnMachine;
using fake::RecordingLog;
using testing::ElementsAre;

const std::string kRun = "2 ConfigBuilder::RunConfig(): about to execute class ";
const std::string kNicRun = "2 ConfigureNic::Execute(): about to execute class config::command::";
const std::string kIndex =
    "2 ConfigureNic::Execute(): NIC index (Win32_NetworkAdapterConfiguration.Index)=";

class Run : public OnMachine {
protected:
    void Append(const std::string& probe, bool fails = false) {
        builder->AppendCommand(std::make_unique<Probe>(probe, notes, fails));
    }

    RecordingLog log;
    std::vector<std::string> notes;
    std::unique_ptr<config::ConfigBuilder> builder = std::make_unique<config::ConfigBuilder>(log);
};

TEST_F(Run, GoesInOrderToTheEnd) {
    bool reboot = true;
    Append("100%n");
    Append("b");
    EXPECT_TRUE(builder->RunConfig(reboot));
    EXPECT_FALSE(reboot);
    builder.reset();
    EXPECT_THAT(notes, ElementsAre("100%n", "b", "end of 100%n", "end of b"));
    EXPECT_THAT(log.lines, ElementsAre(kRun + "config_tests::Probe (100%%n)",
                                       kRun + "config_tests::Probe (b)"));
}

TEST_F(Run, StopsAtTheFirstMarkerWithoutALine) {
    bool reboot = false;
    Append("a");
    builder->AppendCommand(std::make_unique<config::command::Reboot>());
    Append("b");
    builder->AppendCommand(std::make_unique<config::command::Reboot>());
    EXPECT_FALSE(builder->RunConfig(reboot));
    EXPECT_TRUE(reboot);
    EXPECT_THAT(notes, ElementsAre("a"));
    EXPECT_THAT(log.lines, ElementsAre(kRun + "config_tests::Probe (a)"));
}

TEST_F(Run, StopsAtAFailureAndSaysNothingOfARestart) {
    for (const bool before : {false, true}) {
        builder = std::make_unique<config::ConfigBuilder>(log);
        notes.clear();
        Append("a");
        Append("b", true);
        Append("c");
        bool reboot = before;
        EXPECT_THROW(builder->RunConfig(reboot), config::ConfigError);
        EXPECT_EQ(reboot, before);
        EXPECT_THAT(notes, ElementsAre("a", "b"));
    }
}

TEST_F(Run, OfAnAdapterSkipsWhatItHasAndLogsTheRest) {
    fake::Adapter& adapter = Adapter(7);
    adapter.addresses = {"10.0.0.9"};
    adapter.dnsServers = {"10.0.0.53"};
    config_tests::Send(*builder,
                       "+NIC(lan) STATIC +IP ADDRESS(10.0.0.1) MASK(255.0.0.0) - DNS(10.0.0.53) "
                       "SUFFIX(100%n) -");
    auto& nic = dynamic_cast<config::command::ConfigureNic&>(*builder->LastCommand());
    nic.Append(std::make_unique<config::command::Sleep>(8000));
    nic.SetNicIndex(7);
    bool reboot = true;
    EXPECT_TRUE(builder->RunConfig(reboot));
    EXPECT_EQ(TakeChanges(),
              "enableStatic(7, 10.0.0.1, 255.0.0.0); setDnsSuffixSearchOrder(100%n); Pause(8000)");
    EXPECT_THAT(
        log.lines,
        ElementsAre(kRun + "config::command::ConfigureNic ()", kIndex + "7",
                    kNicRun + "SetStatic (IP and Subnet Masks: {ip=10.0.0.1,mask=255.0.0.0})",
                    kNicRun + "SetDnsSuffix (DNS Suffixes=100%%n)",
                    kNicRun + "Sleep (Duration=8000 milliseconds)"));
    EXPECT_THAT(machine.queries,
                ElementsAre("getDhcpEnabled(7)", "getIpAddressAndMask(7)",
                            "getDnsServersAndSuffixes(7)", "getDnsServersAndSuffixes(7)"));
}

TEST_F(Run, OfAnAdapterWithoutIndexIsAnError) {
    config_tests::Send(*builder, "+NIC(lan) DHCP -");
    bool reboot = true;
    try {
        builder->RunConfig(reboot);
        ADD_FAILURE() << "no error";
    } catch (const config::ConfigError&) {
        EXPECT_EQ(fake::ErrorText(),
                  "common\\config\\command\\ConfigureNic:68(0) ConfigureNic has not been been "
                  "associated with a nic index");
    }
    EXPECT_THAT(log.lines, ElementsAre(kRun + "config::command::ConfigureNic ()"));
}

TEST_F(Run, ShowsAccountsAndNoPassword) {
    config_tests::Send(*builder,
                       "DOMAIN(d%s.e) OU(East) USER(joe%n) PASSWORD(secret) WORKGROUP(W) "
                       "PASSWORD(secret) OU(U) PASSWORD(secret) NAME(PC%d) PASSWORD(secret) "
                       "+ROUTE RGW(10.0.0.1) -");
    bool reboot = true;
    EXPECT_TRUE(builder->RunConfig(reboot));
    EXPECT_EQ(TakeChanges(),
              "JoinDomainAndOu(d%s.e, East, joe%n:secret); JoinWorkgroup(W, :secret); MoveOu(U, "
              ":secret); renameComputer(PC%d, :secret); RunCommand(route -p ADD 255.255.255.255 "
              "mask 255.255.255.255 10.0.0.1 METRIC 0)");
    const std::string kCommand = kRun + "config::command::";
    EXPECT_THAT(
        log.lines,
        ElementsAre(kCommand + "JoinDomain (DNS Domain=d%%s.e, Windows Domain= {User=joe%%n})",
                    kCommand + "JoinWorkgroup (Workgroup=W {User=})", kCommand + "MoveOu (OU=U)",
                    kCommand + "ChangeCompName (Name=PC%%d {User=})",
                    kCommand + "SetStaticRoute ()"));
}

}  // namespace
