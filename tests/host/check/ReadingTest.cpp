#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/Spelling.h"
#include "host/check/KnownNames.h"
#include "host/reading/Secrets.h"
#include "tests/host/check/Checked.h"

namespace {

using check_tests::Checked;

TEST(CheckReading, SecretsAreShownNowhere) {
    const std::string secret = "c4n4ry";
    const std::string lines[] = {
        "DomainPassword=" + secret,
        "DomainUsername = " + secret + "\n" + secret,
        "domainpasword=" + secret,
        "Password=" + secret + " ; x",
        "DomainUser=" + secret + "%",
        "; DomainPassword=" + secret + "\nno equals sign " + secret,
        "Colour=red DomainPassword=" + secret,
        "DomainPassword=\"" + secret + "\"\rrest",
        "DomainPassword=a\nDomainPassword=" + secret,
        "Pass\tword\x01=" + secret,
        "[Networking] DomainPassword=" + secret,
    };
    for (const char* const section : {"[Networking]\n", "[TCP/IP]\n", "[Netwrking]\n", ""}) {
        for (const std::string& line : lines) {
            const Checked checked(section + line + "\n");
            EXPECT_FALSE(checked.Findings().List().empty()) << line;
            std::string shown = checked.Messages();
            for (std::size_t i = 1; i <= checked.File().LineCount(); ++i) {
                shown += ShownLine(checked.File(), i) + "\n";
            }
            EXPECT_EQ(shown.find(secret), std::string::npos) << shown;
        }
    }
}

TEST(CheckReading, WhatWasProbablyMeant) {
    using host::check::NearestKey;
    using host::check::NearestSection;
    using host::check::SectionRole;
    const std::pair<const char*, const char*> sections[] = {
        {"Netwroking", "Networking"},   {"TCPIP", "TCP/IP"},   {"NicEntri3", "NicEntry3"},
        {"my nicentry 4", "NicEntry4"}, {"GLOBALS", "Global"}, {"Printers", ""},
    };
    for (const auto& [name, meant] : sections) {
        EXPECT_EQ(NearestSection(name), meant) << name;
    }
    const std::pair<const char*, const char*> keys[] = {
        {"Adress", "Address"},
        {"IPAddress", "Address"},
        {"DefaultGateway", "Gateway"},
        {"DNSServer1", "DNS-Server1"},
        {"Route007", "Route7"},
        {"Rout0", "Route0"},
        {"Route", "Route0"},
        {"DNS-Sever-Count", "DNS-Server-Count"},
        {"Colour", ""},
        {"", ""},
    };
    for (const auto& [name, meant] : keys) {
        EXPECT_EQ(NearestKey(SectionRole::kAdapter, name), meant) << name;
    }
    EXPECT_EQ(host::EditDistance("Gatewya", "GATEWAY"), 1U);
    EXPECT_EQ(NearestKey(SectionRole::kAdapter, std::string(1 << 20, 'x')), "");
}

TEST(CheckReading, VeryManyFaultsAreCountedAndNotKept) {
    std::string text = "[Networking]\nComputerName=PC-1\n";
    for (int i = 0; i < 20000; ++i) {
        text += "Key" + std::to_string(i) + "=x\n";
    }
    const Checked keys(text);
    EXPECT_EQ(keys.Findings().Warnings(), 20000U);
    EXPECT_EQ(keys.Findings().List().size(), host::check::Findings::kKept);

    const Checked counts(
        "[TCP/IP]\nDescription=x\nDHCP=true\nDNS-Server-Count=100000\nDNS-Server99999=10.0.0.1\n"
        "DNS-SuffixSearchOrder=a.b\nStatic-Route-Count=100000\n");
    EXPECT_EQ(counts.Summary(), "W 1:2 missing-route, W 4:18 missing-server");
}

}  // namespace
