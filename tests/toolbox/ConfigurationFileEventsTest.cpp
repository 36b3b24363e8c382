#include "toolbox/config/ConfigurationFileEvents.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "common/err/GeneralError.h"
#include "common/sys/CryptoDll.h"
#include "tests/support/ScratchFile.h"

namespace {

using support::ScratchFile;

constexpr const char* kKindNames[] = {"NAME",    "WORKGROUP", "DOMAIN", "USER",   "PASSWORD",
                                      "OU",      "NIC",       "DHCP",   "STATIC", "IP",
                                      "ADDRESS", "MASK",      "GW",     "DNS",    "SUFFIX",
                                      "ROUTE",   "RGW",       "FIELD4", "METRIC", "IGNORED"};

/// Turns "x" into "plain:x".
class MarkingCipher : public sys::CryptoDll {
public:
    int Decrypt(const std::string& enciphered, std::string& plain) override {
        plain = "plain:" + enciphered;
        return 0;
    }
};

/// The events of a file, one word each: "+NIC(label)" opens, "-" closes, "DNS(10.0.0.1)" is a
/// value.
std::string Events(const std::string& text) {
    const ScratchFile scratch(text);
    IniFile file;
    file.Load(scratch.Path(), false);
    std::string words;
    ConfigurationFileEvents events(
        file,
        [&](std::uint32_t kind, std::uint32_t type, std::string_view value) {
            if (type == config::Event::END) {
                EXPECT_EQ(value, "");
                words += "- ";
                return;
            }
            words += type == config::Event::BEGIN ? "+" : "";
            words += kKindNames[kind];
            words.append("(").append(value).append(") ");
        },
        []() -> std::unique_ptr<sys::CryptoDll> { return std::make_unique<MarkingCipher>(); });
    events.SuppressesReboot();
    events.SendSections();
    return words.empty() ? words : words.substr(0, words.size() - 1);
}

struct EventCase {
    const char* what;
    std::string text;
    std::string events;
};

void ExpectEvents(const std::vector<EventCase>& cases) {
    for (const EventCase& test : cases) {
        EXPECT_EQ(Events(test.text), test.events) << test.what;
    }
}

TEST(ConfigurationFileEvents, SectionsAreChosenWithCase) {
    ExpectEvents({
        {"an empty configuration", "; nothing", ""},
        {"other case is another section",
         "[networking]\nComputerName=A\n[tcp/ip]\nDescription=x\n"
         "[nicentry1]\nDescription=x",
         ""},
        {"a name that contains NicEntry", "[My NicEntry 7]\nDHCP=true\n[TCP/IP 2]\nDHCP=true", "-"},
        {"the file's order", "[TCP/IP]\n[Networking]\nComputerName=A\n[NicEntry1]", "- NAME(A) -"},
    });
}

TEST(ConfigurationFileEvents, Membership) {
    const std::string head = "[Networking]\n";
    ExpectEvents({
        {"nothing", head, ""},
        {"an empty workgroup", head + "Workgroup=True\nDomain=\nDSOrganizationalUnit=East",
         "WORKGROUP()"},
        {"a DNS domain",
         head + "Workgroup=False\nDNSDomain=corp.example\nDomain=CORP\n"
                "DSOrganizationalUnit=East/Sales",
         "DOMAIN(corp.example) OU(East/Sales)"},
        {"an empty DNS domain and no domain", head + "Workgroup=False\nDNSDomain=", ""},
        {"credentials twice",
         head + "DomainUsername=u\nDomainPassword=p\nWorkgroup=False\n"
                "DNSDomain=d.e\nComputerName=PC1",
         "DOMAIN(d.e) USER(plain:u) PASSWORD(plain:p) NAME(PC1) USER(plain:u) PASSWORD(plain:p)"},
        {"a user without password", head + "DomainUsername=u",
         "USER(plain:u) PASSWORD() USER(plain:u) PASSWORD()"},
        {"a password without user", head + "DomainUsername=\nDomainPassword=p\nComputerName=PC1",
         "NAME(PC1)"},
    });
}

TEST(ConfigurationFileEvents, ListsAndRoutesOfAnAdapter) {
    const std::string head = "[TCP/IP]\nDescription=lan\n";
    ExpectEvents({
        {"complete and static",
         head + "DHCP=false\nAddress=10.0.0.1,10.0.0.2\nNetmask=m1,m2\n"
                "Gateway=g1,g2\nDNS-Server-Count=2\nDNS-Server0=d0\nDNS-Server1=d1\n"
                "DNS-SuffixSearchOrder=a.b,c.d\nStatic-Route-Count=1\nRoute0=1.0.0.0,2,3,4,5,",
         "+NIC(lan) STATIC() +IP() ADDRESS(10.0.0.1) ADDRESS(10.0.0.2) MASK(m1) MASK(m2) - GW(g1) "
         "GW(g2) DNS(d0) DNS(d1) SUFFIX(a.b) SUFFIX(c.d) +ROUTE() ADDRESS(1.0.0.0) MASK(2) RGW(3) "
         "FIELD4(4) METRIC(5) - -"},
        {"lists keep empty pieces and blanks",
         head + "DHCP=false\nAddress=,a,, b,\nNetmask=\n"
                "Gateway=,\nDNS-Server-Count=0\nDNS-SuffixSearchOrder=\nStatic-Route-Count=0",
         "+NIC(lan) STATIC() +IP() ADDRESS() ADDRESS(a) ADDRESS() ADDRESS( b) ADDRESS() MASK() - "
         "GW() GW() SUFFIX() +ROUTE() - -"},
        {"routes that begin with a comma or lack the last one",
         head +
             "DHCP=true\n"
             "DNS-Server-Count=0\nDNS-SuffixSearchOrder=s\nStatic-Route-Count=4\nRoute0=,2,3,4,5,\n"
             "Route1=1,2,3\nRoute2=1,,3,\nRoute3= 1 ,\t2 ,3,4,5,6,7,",
         "+NIC(lan) DHCP() SUFFIX(s) +ROUTE() - +ROUTE() ADDRESS(1) MASK(2) - +ROUTE() ADDRESS(1) "
         "MASK() RGW(3) - +ROUTE() ADDRESS(1) MASK(2) RGW(3) FIELD4(4) METRIC(5) - -"},
        {"a count stops at the first character that is no digit",
         head + "DHCP=true\n"
                "DNS-Server-Count=1x\nDNS-Server0=d\nDNS-SuffixSearchOrder=s\nStatic-Route-Count=x",
         "+NIC(lan) DHCP() DNS(d) SUFFIX(s) +ROUTE() - -"},
    });
}

TEST(ConfigurationFileEvents, CountsAboveTheBoundAreRefused) {
    const std::string head = "[TCP/IP]\nDescription=x\nDHCP=true\nDNS-Server-Count=";
    EXPECT_THROW(Events(head + "100001"), config::ConfigError);
    EXPECT_THROW(Events(head + "0\nStatic-Route-Count=100001"), config::ConfigError);
    EXPECT_EQ(Events(head + "100000\nDNS-Server99999=d\nDNS-SuffixSearchOrder=s\n"
                            "Static-Route-Count=-1"),
              "+NIC(x) DHCP() DNS(d) SUFFIX(s) -");
}

}  // namespace
