#include "host/reading/Settings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/reading/SettingNames.h"
#include "tests/support/ScratchFile.h"

namespace {

using host::reading::Setting;
using support::ScratchFile;
using testing::ElementsAreArray;

using Texts = std::vector<std::string>;

/// "4 addresses 3,4,5 = 10.0.0.1/255.0.0.0; note"
std::string Line(const Setting& setting) {
    std::string line = std::to_string(setting.at.place.line) + " " + Identifier(setting.kind);
    const char* separator = " ";
    for (const auto& key : setting.keys) {
        line += separator + std::to_string(key.place.line);
        separator = ",";
    }
    separator = " = ";
    for (const host::reading::Value& value : setting.wanted) {
        line += separator + value.text;
        separator = " + ";
    }
    for (const std::string& note : setting.notes) {
        line += "; " + note;
    }
    return line;
}

Texts Read(const std::string& text) {
    const ScratchFile scratch(text, "settings.ini");
    Texts lines;
    for (const Setting& setting : SettingsOf(host::reading::File::Read(scratch.Path()))) {
        lines.push_back(Line(setting));
    }
    return lines;
}

TEST(Settings, EveryKeyStandsWithWhatItLeadsTo) {
    const Texts expected = {
        "2 restart-answer 2 = false",
        "4 account 4,5 = (enciphered)",
        "7 domain 6,7 = corp.example",
        "8 unit 8 = East/Sales",
        "9 computer-name 9 = PC7",
        "11 adapter 11 = Office",
        "13 addresses 12,13,14 = 10.0.0.1/255.0.0.0 + 10.0.0.2/?",
        "15 gateways 15 = 10.0.0.254",
        "17 dns-servers 16,17,18 = 10.0.0.3; the module passes over the server 0.0.0.0",
        "19 dns-suffixes 19 = a.example + b.example",
        "21 routes 20,21 = 10.1.0.0 mask 255.255.0.0 via 10.0.0.9 metric 4",
    };
    EXPECT_THAT(Read("[Global]\nRebootAfterConfig=false\n"
                     "[Networking]\nDomainUsername=x\nDomainPassword=y\nWorkgroup=False\n"
                     "DNSDomain=corp.example\nDSOrganizationalUnit=East/Sales\nComputerName=PC7\n"
                     "[NicEntry0]\nDescription=Office\nDHCP=no\nAddress=10.0.0.1,10.0.0.2\n"
                     "Netmask=255.0.0.0\nGateway=10.0.0.254\nDNS-Server-Count=2\n"
                     "DNS-Server0=10.0.0.3\nDNS-Server1=0.0.0.0\n"
                     "DNS-SuffixSearchOrder=a.example,b.example\nStatic-Route-Count=1\n"
                     "Route0=10.1.0.0, 255.255.0.0 ,10.0.0.9,,4,\n"),
                ElementsAreArray(expected));
}

TEST(Settings, AMissingKeyIsToldWithTheTextThatStandsForIt) {
    const std::string byAddress = ": the module goes by the text of Address in line 4";
    // The text of the address is the count of the servers, too: ten, of which the last is missing.
    // That silences suffixes and routes.
    const Texts expected = {
        "2 adapter 2 = Office",
        "4 addresses 3,4 = 10.0.0.1/10.0.0.1; there is no Netmask" + byAddress,
        "4 gateways = 10.0.0.1; there is no Gateway" + byAddress,
    };
    EXPECT_THAT(Read("[TCP/IP]\nDescription=Office\nDHCP=False\nAddress=10.0.0.1\n"),
                ElementsAreArray(expected));
}

TEST(Settings, KeysWithoutEffectSayWhy) {
    const Texts expected = {
        "1 unused 1; the module does not read this section",
        "3 adapter 3 = x",
        "4 dhcp 4 = on",
        "5 unused 5; the key stands in line 4 already, and the first one counts",
        "6 dns-servers 6",
        "7 dns-suffixes 7 = a",
        "8 routes 8",
        "9 unused 9; the module does not look for this key here",
        "11 unused 11,12; the module does not read this section",
        "14 unused 14; the section has no Description: the module makes no adapter of it",
        "15 unused 15; the module does not look for this key here",
    };
    EXPECT_THAT(
        Read("Loose=1\n[TCP/IP]\nDescription=x\nDHCP=TRUE\nDHCP=FALSE\n"
             "DNS-Server-Count=0\nDNS-SuffixSearchOrder=a\nStatic-Route-Count=-1\nGateway=x\n"
             "[Printers]\nDefault=1\nDuplex=2\n[NicEntry]\nDHCP=true\nAddress=1\n"),
        ElementsAreArray(expected));
}

TEST(Settings, LostRouteFieldsAndRefusedFilesAreNoted) {
    EXPECT_THAT(Read("[TCP/IP]\nDescription=x\nDHCP=true\nDNS-Server-Count=0\n"
                     "DNS-SuffixSearchOrder=a\nStatic-Route-Count=1\n"
                     "Route0=10.1.0.0,255.255.0.0,10.0.0.9\n")
                    .back(),
                testing::StartsWith("7 routes 6,7 = 10.1.0.0 mask 255.255.0.0 via ? metric 0; "
                                    "line 7: only fields with a comma after them count"));
    EXPECT_EQ(Read("[TCP/IP]\nDescription=x\nDHCP=true\nDNS-Server-Count=100001\n"
                   "[Networking]\nComputerName=PC7\n")
                  .back(),
              "6 unused 6; the module refuses the file before it comes to this section");
}

}  // namespace
