// What "check" calls an address, the module and the machine take for one, and nothing else: the
// same file goes to both.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>

#include "host/check/FileCheck.h"
#include "tests/native/OnMachine.h"
#include "tests/support/Sample.h"
#include "tests/support/ScratchFile.h"
#include "tests/toolbox/RecordingHost.h"

namespace {

class Agreement : public native::OnMachine {
protected:
    /// Whether both take the text for the key, in a file that is good otherwise.
    void ExpectSameVerdict(const std::string& key, const std::string& text) {
        std::string file = "[TCP/IP]\nDescription=lan\nDHCP=false\n";
        const std::pair<std::string, std::string> lines[] = {
            {"Address", "10.0.0.5"},      {"Netmask", "255.255.255.0"},
            {"Gateway", "10.0.0.1"},      {"DNS-Server-Count", "1"},
            {"DNS-Server0", "10.0.0.2"},  {"DNS-SuffixSearchOrder", "corp.example"},
            {"Static-Route-Count", "-1"},
        };
        for (const auto& [name, good] : lines) {
            file += name + "=" + (name == key ? text : good) + "\n";
        }
        const support::ScratchFile scratch(file, "site.ini");
        native::Reset(native::FourAdapters());
        Adapter(7).dhcpEnabled = true;
        machine.files = {scratch.Path()};
        toolbox_tests::RecordingHost host("Internal", "Configure");
        host.fields["Filename"] = scratch.Path();
        GetToolboxAPI()->DoMagic(&host, &host);
        const std::string actions = TakeActions();
        const bool isTaken =
            std::ranges::find(host.calls, "SetField Result=Success") != host.calls.end();
        EXPECT_EQ(host::check::CheckFile(scratch.Path()).findings.Errors() == 0, isTaken)
            << key << "=" << text << "\n"
            << actions;
        ++(isTaken ? taken_ : refused_);
    }

    std::uint64_t taken_ = 0;
    std::uint64_t refused_ = 0;
};

TEST_F(Agreement, CheckAndTheModuleReadTheSameAddresses) {
    for (const char* const text :
         {"10.0.0.7 ", "10.0.0.7,", ",10.0.0.7", "+10.0.0.7", "10.0.0.07", "10.0.0.08", "0xA.7",
          "10.7", "167772167", "10.0.0.7.", "10..0.7", "10.0.0.-7", "10.0.0.7x", "10.0.0.7 x"}) {
        for (const char* const key : {"Address", "Gateway", "DNS-Server0"}) {
            ExpectSameVerdict(key, text);
        }
    }
    const std::uint64_t texts = support::SampleOf(1000, 5000, 20'000);
    std::mt19937 random(13);
    const auto below = [&random](unsigned bound) {
        return static_cast<unsigned>(random() % bound);
    };
    const std::string keys[] = {"Address", "Netmask", "Gateway", "DNS-Server0"};
    const std::string numbers[] = {"0", "10", "127", "224", "255", "256", "7", "08", "0x1F", "-1"};
    const std::string odd = " \t,.+-x0:";
    for (std::uint64_t i = 0; i < texts && !HasFailure(); ++i) {
        const std::string& key = keys[below(4)];
        std::string text;
        for (unsigned items = below(4) == 0 ? 2 : 1; items > 0; --items) {
            const std::string good = key == "Netmask" ? "255.255.255.0" : "10.0.0.7";
            text += (text.empty() ? "" : ",") + good;
        }
        for (unsigned changes = below(3); changes > 0; --changes) {
            const std::size_t at = below(static_cast<unsigned>(text.size()) + 1);
            if (below(3) == 0) {
                const std::size_t start = text.find_last_of(".,", at) + 1;
                text.replace(start, text.find_first_of(".,", start) - start, numbers[below(10)]);
            } else if (below(3) == 0) {
                text.erase(at, 1);
            } else {
                text.insert(at, 1, odd[below(static_cast<unsigned>(odd.size()))]);
            }
        }
        ExpectSameVerdict(key, text);
    }
    EXPECT_GT(taken_, texts / 4);
    EXPECT_GT(refused_, texts / 4);
}

}  // namespace
