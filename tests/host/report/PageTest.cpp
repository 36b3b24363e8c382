// "configure --report": what a page says, and that no text from outside is more than text in it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "host/report/Digest.h"
#include "host/report/Html.h"
#include "machine/MachineFile.h"
#include "tests/host/configure/Support.h"

namespace {

using namespace configure_tests;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

TEST(Html, EveryTextIsEscaped) {
    struct Case {
        const char* text;
        const char* written;
    };
    const Case cases[] = {
        {"<script>a && b</script>", "&lt;script&gt;a &amp;&amp; b&lt;/script&gt;"},
        {"\" onload='x'", "&quot; onload=&#39;x&#39;"},
        {"\x1b[2J\r\nnext\x7f", "\\x1B[2J\\x0D\\x0Anext\\x7F"},
        {"K\xF6ln", "K\xC3\xB6ln"},
        {"{{content}}", "{{content}}"},
    };
    for (const Case& tried : cases) {
        host::report::Html html;
        html.Leaf("b", tried.text, {{"title", tried.text}});
        EXPECT_EQ(html.Written(),
                  std::string("<b title=\"") + tried.written + "\">" + tried.written + "</b>");
    }
    // It would turn around what follows it.
    host::report::Html html;
    html.Leaf("b", host::report::Utf8{"\u202Egpj.exe"});
    EXPECT_EQ(html.Written(), "<b>\uFFFDgpj.exe</b>");
}

TEST(Digest, IsThatOfTheStandard) {
    EXPECT_EQ(host::report::Sha256("abc"),
              "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
}

class ReportPage : public testing::Test {
protected:
    ReportPage() { _putenv_s("SOURCE_DATE_EPOCH", "86400"); }
    ~ReportPage() override { _putenv_s("SOURCE_DATE_EPOCH", ""); }

    std::string Page(const std::string& config, const machine::State& machine,
                     const Arguments& more, unsigned long exitCode) {
        files_.Write("site.ini", config);
        files_.Write("box.json", machine::FormatState(machine));
        const auto outcome =
            Configure(With({"site.ini", "--machine", "box.json", "--report", "page.html"}, more));
        EXPECT_EQ(outcome.exitCode, exitCode) << outcome.data << outcome.notes;
        return ReadFile("page.html");
    }

    Files files_;
};

constexpr const char* kReordered = R"([TCP/IP]
Description=Office
DHCP=false
Address=203.0.113.30
Netmask=255.255.255.128
Gateway=203.0.113.1
DNS-Server-Count=2
DNS-Server0=10.0.0.2
DNS-Server1=10.0.0.1
DNS-SuffixSearchOrder=corp.example
Static-Route-Count=-1
Speed=1000
)";

machine::State Box() {
    machine::State state = machine::DefaultState();
    state.adapters.erase(state.adapters.begin());
    state.adapters[0].dnsServers = state.adapters[0].staticDns = {"10.0.0.1", "10.0.0.2"};
    return state;
}

TEST_F(ReportPage, SaysWhatThePlanSays) {
    const std::string page = Page(kReordered, Box(), {"--plan"}, 2);
    EXPECT_THAT(page, HasSubstr("<p class=\"word\">Changes planned</p>"));
    EXPECT_THAT(page, HasSubstr("IP addresses: 203.0.113.30/255.255.255.128 (new)."));
    EXPECT_THAT(page, HasSubstr("DNS servers: 10.0.0.2 (moved), 10.0.0.1 (moved)."));
    EXPECT_THAT(page, HasSubstr("<li>call: SetDNSServerSearchOrder</li>"));
    EXPECT_THAT(page, HasSubstr("the module ignores the key &quot;Speed&quot;"));
    EXPECT_THAT(page, HasSubstr("Configure::HandleMessage"));
    EXPECT_THAT(page, HasSubstr("Written 1970-01-02 00:00 UTC by"));
    for (const char* const input : {"site.ini", "box.json"}) {
        EXPECT_THAT(page, HasSubstr("<dd>" + host::report::Sha256(ReadFile(input)) + "</dd>"));
    }
    EXPECT_EQ(Page(kReordered, Box(), {"--plan"}, 2), page);
}

TEST_F(ReportPage, HasRunsAndRestartsInOrder) {
    const std::string rename = "[Global]\nRebootAfterConfig=true\n[Networking]\nComputerName=PC7\n";
    using testing::ContainsRegex;
    EXPECT_THAT(Page(rename, Box(), {}, 3),
                AllOf(HasSubstr(">Restart needed<"), HasSubstr("PC7 (after a restart) (new)"),
                      HasSubstr(">Restart, to come<"), HasSubstr(">Run 2, foreseen<")));
    const std::string done = Page(rename, Box(), {"--until-done"}, 0);
    EXPECT_THAT(done, AllOf(HasSubstr(">Done<"), HasSubstr("Computer name: PC7 (new)."),
                            HasSubstr("WORKSTATION1 -&gt; PC7"), HasSubstr(">Settled<")));
    EXPECT_LT(done.find(">Run 1<"), done.find(">Restart<"));
    EXPECT_LT(done.find(">Restart<"), done.find(">Run 2<"));
    EXPECT_THAT(Page(rename, Box(), {"--plan", "--fail", "Rename=5"}, 1),
                AllOf(HasSubstr(">Would fail<"), HasSubstr("<dt>Code</dt>")));
}

}  // namespace
