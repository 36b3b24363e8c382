#include "common/config/Analyzer.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/config/Factory.h"
#include "tests/common/config/EventWords.h"
#include "tests/native/OnMachine.h"

namespace {

using native::Joining;
using native::JoiningGroup;
using native::OnMachine;
using native::Renaming;

struct AnalysisCase {
    const char* what;
    std::string events;
    std::string commands;
};

class Analysis : public OnMachine {
protected:
    static std::string Analyzed(const std::string& events) {
        logging::NullLogSink log;
        config::ConfigBuilder builder(log);
        config_tests::Send(builder, events);
        config::Analyze(builder);
        return native::TextOf(builder.Commands());
    }

    static void Expect(const std::vector<AnalysisCase>& cases) {
        for (const AnalysisCase& test : cases) {
            EXPECT_EQ(Analyzed(test.events), test.commands) << test.what;
        }
    }
};

TEST_F(Analysis, BindsAdapterSectionsToAdapters) {
    const auto bound = [](const std::string& place, const std::string& index) {
        return "ConfigureNic " + place + " index " + index + " {}";
    };
    const std::string none = "n/n/n";
    Expect({
        {"in the tree's order until none is free, and by place still",
         "+NIC(a) - +NIC(b) - +NIC(c) - +NIC(d) BUS(2) DEVICE(0) FUNCTION(0) -",
         bound(none, "7") + "; " + bound(none, "9") + "; " + bound(none, "n") + "; " +
             bound("2/0/0", "7")},
        {"by place", "+NIC(a) BUS(3) DEVICE(0) FUNCTION(0) -", bound("3/0/0", "9")},
        {"the fallback skips what a place has taken",
         "+NIC(a) BUS(2) DEVICE(0) FUNCTION(0) - +NIC(b) -",
         bound("2/0/0", "7") + "; " + bound(none, "9")},
        {"one place twice",
         "+NIC(a) BUS(2) DEVICE(0) FUNCTION(0) - +NIC(a) BUS(2) DEVICE(0) FUNCTION(0) -",
         bound("2/0/0", "7") + "; " + bound("2/0/0", "7")},
        {"an unknown place falls back", "+NIC(a) BUS(8) DEVICE(0) FUNCTION(0) - +NIC(b) -",
         bound("8/0/0", "7") + "; " + bound(none, "9")},
        {"a place without function falls back", "+NIC(a) BUS(3) DEVICE(0) -", bound("3/0/n", "7")},
        {"a device off the PCI bus, which has no place, is found at 0/0/0",
         "+NIC(a) BUS(0) DEVICE(0) FUNCTION(0) -", bound("0/0/0", "5")},
    });
    EXPECT_EQ(machine.trace.Size(), 0U);  // the tree is not made again
}

TEST_F(Analysis, PausesOnceAfterStaticAddressing) {
    const std::string ip = "+IP ADDRESS(10.0.0.1) MASK(255.0.0.0) - ";
    const std::string set = "EnableStatic 7 {10.0.0.1}, {255.0.0.0}";
    Expect({
        {"after the first", "+NIC(a) STATIC " + ip + "STATIC " + ip + "-",
         "ConfigureNic n/n/n index 7 {" + set + "; sleep 8000; " + set + "}"},
        {"after DHCP", "+NIC(a) DHCP STATIC " + ip + "-",
         "ConfigureNic n/n/n index 7 {EnableDHCP 7; " + set + "; sleep 8000}"},
        {"not for DHCP", "+NIC(a) DHCP - +NIC(b) STATIC " + ip + "-",
         "ConfigureNic n/n/n index 7 {EnableDHCP 7}; ConfigureNic n/n/n index 9 "
         "{EnableStatic 9 {10.0.0.1}, {255.0.0.0}; sleep 8000}"},
    });
}

TEST_F(Analysis, RenamesBeforeItJoinsAndMarksTheRestarts) {
    const std::string join = Joining("d.e", "d.e\\", "", "", 1);
    const std::string rename = Renaming("PC9");
    const std::string nic = "ConfigureNic n/n/n index 7 {}";
    Expect({
        {"join first", "DOMAIN(d.e) +NIC(a) - NAME(PC9)",
         rename + "; Reboot; " + nic + "; " + join + "; Reboot"},
        {"the first of each", "NAME(A) DOMAIN(d.e) NAME(B) DOMAIN(f.g)",
         Renaming("A") + "; Reboot; " + join + "; " + Renaming("B") + "; " +
             Joining("f.g", "f.g\\", "", "", 1) + "; Reboot"},
        {"rename alone", "NAME(PC9) +NIC(a) -", rename + "; " + nic + "; Reboot"},
        {"rename and workgroup", "WORKGROUP(SALES) NAME(PC9)",
         JoiningGroup("SALES") + "; " + rename + "; Reboot"},
    });
}

TEST_F(Analysis, IsThePlatformVariantsOfTheOneFactory) {
    config::Factory& factory = config::Factory::Select();
    EXPECT_EQ(&factory, &config::Factory::Select());
    EXPECT_NE(dynamic_cast<config::WindowsVistaFactory*>(&factory), nullptr);
    EXPECT_EQ(&factory.GetAnalyzer(), &factory.GetAnalyzer());

    config::DefaultFactory standard;
    logging::NullLogSink log;
    config::ConfigBuilder builder(log);
    config_tests::Send(builder,
                       "DOMAIN(d.e) NAME(PC9) +NIC(a) STATIC +IP ADDRESS(10.0.0.1) "
                       "MASK(255.0.0.0) - -");
    standard.GetAnalyzer().Analyze(builder.Commands());
    EXPECT_EQ(native::TextOf(builder.Commands()),
              Joining("d.e", "d.e\\", "", "", 1) + "; " + Renaming("PC9") +
                  "; ConfigureNic n/n/n index 7 "
                  "{EnableStatic 7 {10.0.0.1}, {255.0.0.0}}; Reboot");
}

}  // namespace
