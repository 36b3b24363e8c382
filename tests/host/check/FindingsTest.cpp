#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/host/check/Checked.h"

namespace {

using check_tests::Checked;
using namespace std::string_literals;

struct FindingsCase {
    const char* what;
    std::string text;
    const char* summary;
};

void ExpectFindings(const std::vector<FindingsCase>& cases) {
    for (const FindingsCase& test : cases) {
        const Checked checked(test.text);
        EXPECT_EQ(checked.Summary(), test.summary) << test.what << "\n" << checked.Messages();
    }
}

/// An adapter section without faults but for the lines that a case puts in their place.
std::string Adapter(const std::string& addressing, const std::string& dns = "DNS-Server-Count=0\n",
                    const std::string& routes = "Static-Route-Count=-1\n") {
    return "[TCP/IP]\nDescription=lan\n" + addressing + dns +
           "DNS-SuffixSearchOrder=corp.example\n" + routes;
}

std::string Static(const std::string& address, const std::string& mask,
                   const std::string& gateway) {
    return "DHCP=false\nAddress=" + address + "\nNetmask=" + mask + "\nGateway=" + gateway + "\n";
}

const std::string kStatic = Static("10.0.0.5", "255.255.255.0", "10.0.0.1");
const std::string kDhcp = "DHCP=true\n";

/// "Static-Route-Count=1\nRoute0=...\n"
std::string Numbered(const char* count, const char* key, const std::vector<std::string>& values) {
    std::string text = count + "="s + std::to_string(values.size()) + "\n";
    for (std::size_t i = 0; i < values.size(); ++i) {
        text += key + std::to_string(i) + "=" + values[i] + "\n";
    }
    return text;
}

std::string Servers(const std::vector<std::string>& servers) {
    return Adapter(kDhcp, Numbered("DNS-Server-Count", "DNS-Server", servers));
}

std::string Routes(const std::vector<std::string>& routes) {
    return Adapter(kStatic, "DNS-Server-Count=0\n",
                   Numbered("Static-Route-Count", "Route", routes));
}

TEST(CheckFindings, FilesWithoutFaults) {
    ExpectFindings({
        {"static", Adapter(kStatic), ""},
        {"DHCP", Adapter(kDhcp), ""},
        {"two addresses, servers and routes",
         Adapter(Static("10.0.0.5,10.1.0.5", "255.255.255.0,255.255.0.0", "10.1.9.1,10.0.0.1"),
                 Numbered("DNS-Server-Count", "DNS-Server", {"10.0.0.2", "127.0.0.1"}),
                 Numbered("Static-Route-Count", "Route",
                          {"10.9.0.0,255.255.0.0,10.0.0.9,,1,",
                           " 10.8.0.0 , 255.255.0.0 , 10.0.0.9 , x , 9999 ,"})),
         ""},
        {"a workgroup", "[Networking]\nWorkgroup=True\nDomain=SALES\nComputerName=PC-1\n", ""},
        {"a domain",
         "[Global]\nRebootAfterConfig=true\n[Networking]\nDomainUsername=x\n"
         "DomainPassword=y\nWorkgroup=False\nDNSDomain=corp.example\n"
         "DSOrganizationalUnit=East/Sales\nComputerName=PC-1\n",
         ""},
        {"comments and blank lines", "; one\n\n# two\n[Networking] ; three\nComputerName=PC-1", ""},
    });
}

TEST(CheckFindings, TheFileAsAWhole) {
    ExpectFindings({
        {"empty", "", "W 0:1 empty-file"},
        {"UTF-16", "\xFF\xFE[\0G\0"s, "E 1:1 utf-16"},
        {"a mark before a header", "\xEF\xBB\xBF[Networking]\nComputerName=PC-1\n",
         "W 0:1 nothing-to-do, E 1:1 byte-order-mark, W 2:1 outside-sections"},
        {"a mark before a comment", "\xEF\xBB\xBF; x\n[Networking]\nComputerName=PC-1\n",
         "W 1:1 byte-order-mark"},
        {"UTF-16 without a mark", "[\0G\0"s, "E 1:2 utf-16"},
        {"a NUL", "[Networking]\nComputerName=PC-1\n; \0"s, "E 3:3 nul-byte"},
        {"binary data",
         "[Networking]\nComputerName=PC-1\n; \x7F"
         "ELF\x02\n",
         "E 3:7 binary"},
        {"Macintosh line ends", "[Networking]\rComputerName=PC-1\r", "E 1:13 line-ends"},
        {"LF CR", "[Networking]\n\rComputerName=PC-1\n\r", "E 2:1 carriage-return"},
        {"UTF-8",
         "; \xC3\xBC\n[TCP/IP]\nDescription=B\xC3\xBCro\nDHCP=true\nDNS-Server-Count=0\n"
         "DNS-SuffixSearchOrder=a.b\nStatic-Route-Count=-1\n",
         "E 3:14 utf-8"},
        {"the code page",
         "[TCP/IP]\nDescription=B\xFCro\nDHCP=true\nDNS-Server-Count=0\n"
         "DNS-SuffixSearchOrder=a.b\nStatic-Route-Count=-1\n",
         ""},
        {"a lone carriage return", "[Networking]\nComputerName=PC-1\rWorkgroup=x\n",
         "E 2:18 carriage-return"},
    });
    EXPECT_EQ(host::check::CheckFile("no-such-file.ini").findings.Errors(), 1U);
}

TEST(CheckFindings, SectionsAndKeys) {
    const std::string name = "[Networking]\nComputerName=PC-1\n";
    ExpectFindings({
        {"misspelt section", name + "[Globl]\n", "E 3:2 unknown-section"},
        {"section in another case", "[networking]\nComputerName=PC-1\n[tcp/ip]\n[nicentry2]\n",
         "W 0:1 nothing-to-do, E 1:2 unknown-section, E 3:2 unknown-section, E 4:2 "
         "unknown-section"},
        {"the first spelling of a section counts",
         "[networking]\n[Networking]\nComputerName=PC-1\n",
         "W 0:1 nothing-to-do, E 1:2 unknown-section"},
        {"[Global] in any case", name + "[GLOBAL]\nrebootafterconfig=true\n", ""},
        {"a section of somebody else", name + "[Printers]\nkey=value\n", "W 3:2 unknown-section"},
        {"misspelt keys", "[Networking]\nComputerNam=PC-1\nDSOrganisationalUnit=East\n",
         "E 2:1 unknown-key, E 3:1 unknown-key"},
        {"an unknown key", name + "Colour=red\n", "W 3:1 unknown-key"},
        {"a key of another section",
         name + "Netmask=255.0.0.0\n[Global]\nRoute0=x\nWorkgroup=True\n",
         "E 3:1 misplaced-key, E 5:1 misplaced-key, E 6:1 misplaced-key"},
        {"a repeated key in a repeated section", name + "[Global]\n[Networking]\nComputerName=X\n",
         "W 5:1 repeated-key"},
        {"a repeated adapter section", Adapter(kStatic) + "[tcp/ip]\nDHCP=true\n",
         "W 10:2 repeated-section, W 11:1 repeated-key"},
        {"brackets", "[Networking\nComputerName=PC-1\n[Global] RebootAfterConfig=false\n",
         "W 1:1 no-closing-bracket, W 3:10 behind-header"},
        {"lines without an equals sign", "lost\n[Networking]\nlost\n; c\nlost\nComputerName=PC-1\n",
         "W 1:1 no-equals-sign, W 3:1 no-equals-sign, W 5:1 no-equals-sign"},
        {"a continued value", "[Networking]\nWorkgroup=True\nDomain=SALES\nmore\n\nmore\n",
         "E 3:8 bad-name, W 4:1 no-equals-sign, W 6:1 no-equals-sign"},
        {"comments, quotes and percent signs in values",
         "[Networking]\nWorkgroup=False\nDNSDomain=\"a.b\"\nDSOrganizationalUnit=%UNIT% ; mine\n",
         "W 1:2 no-account, E 3:11 bad-name, W 3:11 quoted-value, W 4:22 percent-sign, "
         "W 4:29 comment-in-value"},
    });
}

TEST(CheckFindings, Membership) {
    const std::string head = "[Networking]\nDomainUsername=x\nDomainPassword=y\n";
    ExpectFindings({
        {"no Workgroup", head + "Domain=CORP\nDNSDomain=corp.example\nComputerName=PC-1\n",
         "W 4:1 unused-key, W 5:1 unused-key"},
        {"a workgroup without name", head + "Workgroup=True\n",
         "W 2:1 unused-key, W 3:1 unused-key, W 4:11 no-domain"},
        {"a workgroup with a unit and a DNS domain",
         head + "Workgroup=True\nDomain=SALES\nDNSDomain=a.b\nDSOrganizationalUnit=East\n",
         "W 6:1 unused-key, W 7:1 unused-key"},
        {"a workgroup whose name Windows refuses",
         head + "Workgroup=True\nDomain=A-NAME-THAT-IS-TOO-LONG\n", "E 5:8 bad-name"},
        {"an odd Workgroup", head + "Workgroup=yes\nDNSDomain=a.b\n", "W 4:11 odd-switch"},
        {"a domain without DNSDomain", head + "Workgroup=False\nDomain=CORP\n",
         "W 2:1 unused-key, W 3:1 unused-key, W 5:1 unused-key"},
        {"both domains", head + "Workgroup=False\nDNSDomain=a.b\nDomain=A\n", "W 6:1 unused-key"},
        {"an empty DNSDomain alone", head + "Workgroup=False\nDNSDomain=\n",
         "W 2:1 unused-key, W 3:1 unused-key, W 5:1 no-domain"},
        {"both empty", head + "Workgroup=False\nDNSDomain=\nDomain=\n", "W 6:1 no-domain"},
        {"a domain name that is none", head + "Workgroup=False\nDNSDomain=a..b\n",
         "E 5:11 bad-name"},
        {"units", head + "DSOrganizationalUnit=\n", "W 4:1 empty-unit"},
        {"a unit with an empty part", head + "DSOrganizationalUnit=/East\n", "E 4:22 bad-unit"},
        {"a unit with backslashes", head + "DSOrganizationalUnit=East\\Sales\n", "W 4:22 odd-unit"},
        {"a password without user", "[Networking]\nDomainPassword=y\nComputerName=PC-1\n",
         "W 2:1 unused-key"},
        {"a user without password", "[Networking]\nDomainUsername=x\nComputerName=PC-1\n",
         "W 2:1 no-password"},
        {"a join without account", "[Networking]\nWorkgroup=False\nDNSDomain=a.b\n",
         "W 1:2 no-account"},
    });
}

TEST(CheckFindings, NamesAndRestart) {
    for (const char* const name :
         {"", "PC 1", "PC_1", "-PC", "PC-", "123", "ABCDEFGHIJKLMNOP", "PC.corp", "P%C"}) {
        const Checked checked("[Networking]\nComputerName="s + name);
        EXPECT_EQ(checked.Summary().substr(0, 15), "E 2:14 bad-name") << name;
    }
    ExpectFindings({
        {"a suppressed restart that nothing needs",
         "[Global]\nRebootAfterConfig=false\n" + Adapter(kStatic), ""},
        {"neither true nor false",
         "[Global]\nRebootAfterConfig=no\n[Networking]\nComputerName=PC-1\n", "W 2:19 odd-switch"},
    });
    const std::string rename =
        "[Global]\nRebootAfterConfig=FALSE\n[Networking]\nComputerName=PC-1\n";
    const Checked alone(rename);
    EXPECT_EQ(alone.Summary(), "W 2:19 suppressed-restart");
    EXPECT_NE(alone.Messages().find("does all that the file asks for"), std::string::npos);
    const Checked both(rename +
                       "DomainUsername=x\nDomainPassword=y\nWorkgroup=False\nDNSDomain=a.b\n");
    EXPECT_NE(both.Messages().find("the join and what the file asks for after it are never done"),
              std::string::npos);
}

TEST(CheckFindings, Addressing) {
    ExpectFindings({
        {"no Description",
         "[TCP/IP]\nDHCP=false\nAddress=10.0.0.256\nDNS-Server-Count=1\n"
         "DNS-Server0=x\nDNS-SuffixSearchOrder=,\nStatic-Route-Count=1\nRoute0=1.0.0.0,\n",
         "E 1:2 no-description, E 3:9 bad-address, E 5:13 bad-address, E 6:23 bad-suffix, "
         "E 6:24 bad-suffix, E 8:16 incomplete-route"},
        {"DHCP that is neither true nor false",
         Adapter("DHCP=yes\nAddress=10.0.0.5\n"
                 "Netmask=255.0.0.0\nGateway=10.0.0.1\n"),
         "W 3:6 odd-switch"},
        {"keys that DHCP makes useless",
         Adapter("DHCP=true\nAddress=10.0.0.5\nNetmask=x\nGateway=\n"),
         "W 4:1 unused-key, W 5:1 unused-key, W 6:1 unused-key"},
        {"counts that differ", Adapter(Static("10.0.0.5,10.0.0.6", "255.0.0.0", "10.0.0.1")),
         "E 5:9 address-mask-count"},
        {"texts that are no addresses",
         Adapter(Static("10.0.0.256,host, 10.0.0.1,,",
                        "255.0.0.0,1,255.0.255.0,0.0.0.0,255.255.255.255", "")),
         "E 4:9 bad-address, E 4:20 bad-address, E 4:25 bad-address, E 4:35 bad-address, "
         "E 4:36 bad-address, E 5:19 bad-mask, E 5:21 bad-mask, E 5:33 bad-mask, E 5:41 bad-mask, "
         "E 6:9 "
         "bad-address"},
        {"addresses of no host",
         Adapter(
             Static("0.0.0.5,127.0.0.1,224.0.0.1", "255.0.0.0,255.0.0.0,255.0.0.0", "10.0.0.1")),
         "E 4:9 bad-address, E 4:17 bad-address, E 4:27 bad-address"},
        {"addresses in other notations",
         Adapter(Static("10.1,010.0.0.1,0xA000002,10.0.0.7 ",
                        "255.0.0.0,255.0.0.0,255.0.0.0 ,255.0.0.0", "10.0.0.1 x,10.0.0.2")),
         "W 4:9 odd-address, W 4:14 odd-address, W 4:24 odd-address, W 5:29 odd-address, "
         "W 6:9 odd-address"},
        {"a gateway outside", Adapter(Static("10.0.0.5", "255.255.255.0", "10.0.0.1,10.0.1.1")),
         "E 6:18 gateway-outside"},
        {"too many gateways",
         Adapter(Static("10.0.0.5", "255.0.0.0",
                        "10.0.0.1,10.0.0.2,10.0.0.3,10.0.0.4,10.0.0.6,10.0.0.7")),
         "E 6:9 gateway-count"},
    });
}

TEST(CheckFindings, DnsServersAndSuffixes) {
    ExpectFindings({
        {"server texts", Servers({"0.0.0.0", "ns1", "10.0.0.2,10.0.0.3"}),
         "W 5:13 skipped-server, E 6:13 bad-address, E 7:13 bad-address"},
        {"a count with a tail", Adapter(kDhcp, "DNS-Server-Count=1x\nDNS-Server0=10.0.0.2\n"),
         "W 4:18 odd-count"},
        {"servers beyond the count", Adapter(kDhcp, "DNS-Server-Count=0\nDNS-Server0=10.0.0.3\n"),
         "W 5:1 unused-key"},
        {"a server that is missing in between",
         Adapter(kDhcp, "DNS-Server-Count=3\nDNS-Server2=10.0.0.2\n"), "W 4:18 missing-server"},
        {"the last server missing", Adapter(kDhcp, "DNS-Server-Count=2\nDNS-Server0=10.0.0.2\n"),
         "W 4:18 missing-last-server"},
        {"a number with leading zeros",
         Adapter(kDhcp, "DNS-Server-Count=1\nDNS-Server00=10.0.0.2\n"),
         "W 4:18 missing-last-server, E 5:1 unknown-key"},
        {"a count out of range does not hide what follows",
         Adapter(kDhcp, "DNS-Server-Count=100001\nDNS-Server0=x\n",
                 "Static-Route-Count=1\nRoute0=1.0.0.0,2,\n") +
             "[NicEntry1]\nDescription=b\n"
             "DHCP=true\nDNS-SuffixSearchOrder=*\nStatic-Route-Count=-1\n",
         "E 4:18 count-out-of-range, E 5:13 bad-address, E 8:16 bad-mask, "
         "E 8:18 incomplete-route, E 12:23 bad-suffix"},
        {"suffixes",
         "[TCP/IP]\nDescription=lan\nDHCP=true\nDNS-SuffixSearchOrder=a.b,, c.d\n"
         "Static-Route-Count=-1\n",
         "E 4:27 bad-suffix, E 4:28 bad-suffix"},
        {"suffixes of two adapters",
         Adapter(kDhcp) + "[NicEntry1]\nDescription=b\nDHCP=true\n"
                          "DNS-SuffixSearchOrder=other.example\nStatic-Route-Count=-1\n",
         "W 10:23 suffix-conflict"},
    });
}

TEST(CheckFindings, Routes) {
    const auto lines = [](const std::string& text) {
        return Adapter(kStatic, "DNS-Server-Count=0\n", text);
    };
    const std::string route = "10.9.0.0,255.255.0.0,10.0.0.9,x,5,";
    ExpectFindings({
        {"no final comma", Routes({"10.9.0.0,255.255.0.0,10.0.0.9,x,5"}),
         "E 10:40 incomplete-route"},
        {"no comma", Routes({"10.9.0.0"}), "W 10:8 no-route"},
        {"a comma in front", Routes({",1,2,3,4,"}), "W 10:8 no-route"},
        {"fields after the metric", Routes({route + "6,"}), "W 10:42 behind-metric"},
        {"metrics",
         Routes({"10.7.0.0,255.255.0.0,10.0.0.9,x,0,", "10.8.0.0,255.255.0.0,10.0.0.9,x,5 hops,",
                 "10.9.0.0,255.255.0.0,10.0.0.9,x,,"}),
         "E 10:40 bad-metric, W 11:40 odd-metric, E 12:40 bad-metric"},
        {"bits outside the mask", Routes({"10.9.0.1,255.255.0.0,10.0.0.9,x,5,"}),
         "E 10:8 route-bits"},
        {"a default route", Routes({"0.0.0.0,0.0.0.0,10.0.0.9,x,5,"}), "E 10:8 default-route"},
        {"the same route twice", Routes({route, "10.9.0.0,255.255.0.0,10.0.0.9,y,6,"}),
         "E 11:8 repeated-route"},
        {"a missing route is the one before it",
         lines("Static-Route-Count=2\nRoute0=" + route + "\n"),
         "E 1:2 repeated-route, W 1:2 missing-route"},
        {"a first route that is missing", lines("Static-Route-Count=1\n"), "W 1:2 missing-route"},
        {"routes beyond the count", lines("Static-Route-Count=-1\nRoute0=x\n"),
         "W 10:1 unused-key"},
        {"a gateway in no network", Routes({"10.9.0.0,255.255.0.0,10.5.0.9,x,5,"}),
         "W 10:8 gateway-outside"},
        {"two sections",
         Routes({}) + "[NicEntry1]\nDescription=b\nDHCP=true\n"
                      "DNS-SuffixSearchOrder=corp.example\nStatic-Route-Count=0\n",
         "E 14:20 several-route-sections"},
        {"a count out of range", lines("Static-Route-Count=100001\nRoute0=,\n"),
         "E 9:20 count-out-of-range, W 10:8 no-route"},
    });
}

TEST(CheckFindings, TheTextThatAMissingKeyReuses) {
    struct ReuseCase {
        const char* what;
        std::string text;
        const char* summary;
        const char* words;
    };
    const std::string head = "[TCP/IP]\nDescription=lan\n";
    const ReuseCase cases[] = {
        {"no Description", "[TCP/IP]\nDHCP=true\n[Networking]\nComputerName=PC-1\n",
         "E 1:2 no-description",
         "sets nothing of this section and gives the whole file up when it "
         "is in [Networking]"},
        {"suffixes of a DHCP adapter", head + "DHCP=true\nStatic-Route-Count=-1\n",
         "W 1:2 reused-text",
         "no \"DNS-SuffixSearchOrder\": the module takes the text of \"DHCP\" in line 3 and sets "
         "the "
         "DNS suffixes of the machine to \"true\""},
        {"no route count", head + "DHCP=true\nDNS-SuffixSearchOrder=a.b\n", "W 1:2 reused-text",
         "the text of \"DNS-SuffixSearchOrder\" in line 4 and reads the count 0: it deletes the "
         "machine's persistent routes but the first default route"},
        {"no server count after a gateway",
         head + kStatic +
             "DNS-SuffixSearchOrder=a.b\n"
             "Static-Route-Count=-1\n",
         "W 1:2 reused-text, W 1:2 missing-server, W 1:2 "
         "missing-last-server",
         "the text of \"Gateway\" in line 6 and reads the count 10"},
        {"a route out of a suffix list",
         head + "DHCP=true\nDNS-Server-Count=0\n"
                "DNS-SuffixSearchOrder=1.b,c.d\n",
         "E 1:2 missing-route, W 1:2 reused-text", "reads the count 1"},
    };
    for (const ReuseCase& test : cases) {
        const Checked checked(test.text);
        EXPECT_EQ(checked.Summary(), test.summary) << test.what << "\n" << checked.Messages();
        EXPECT_NE(checked.Messages().find(test.words), std::string::npos) << test.what << "\n"
                                                                          << checked.Messages();
    }
}

}  // namespace
