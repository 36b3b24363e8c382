#include "host/reading/File.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "common/config/Event.h"
#include "tests/host/check/RandomFile.h"
#include "tests/support/ScratchFile.h"

namespace {

using host::reading::Entry;
using host::reading::Event;
using host::reading::File;
using host::reading::LookUp;
using host::reading::Place;
using host::reading::Section;
using support::ScratchFile;

/// What stands at the place.
std::string_view TextAt(const File& file, const Place& place) {
    return place.line == 0 ? std::string_view()
                           : file.Line(place.line).substr(place.column - 1, place.length);
}

TEST(ReadFile, EveryTextIsWhereItIsSaidToBe) {
    check_tests::RandomFile files(7, 6);
    std::size_t continued = 0;
    for (int i = 0; i < 300; ++i) {
        std::string text = files.Make();
        for (int changes = files.Below(8); changes > 0 && !text.empty(); --changes) {
            const char characters[] = "[]=;#\r\n \t\0x";
            text[static_cast<std::size_t>(files.Below(static_cast<int>(text.size())))] =
                characters[files.Below(sizeof characters - 1)];
        }
        const ScratchFile scratch(text, "places.ini");
        const File file = File::Read(scratch.Path());
        for (const Section& section : file.Sections()) {
            EXPECT_TRUE(TextAt(file, section.header) == section.name) << text;
            for (const Entry& entry : section.entries) {
                EXPECT_TRUE(TextAt(file, entry.keyPlace) == entry.key) << text;
                const std::string_view first = entry.value.substr(0, entry.value.find('\n'));
                EXPECT_TRUE(TextAt(file, entry.valuePlace) == first) << text;
                for (std::size_t end = first.size(); end < entry.value.size(); ++continued) {
                    const std::size_t start = end + 1;
                    end = std::min(entry.value.find('\n', start), entry.value.size());
                    const std::string_view line = entry.value.substr(start, end - start);
                    EXPECT_TRUE(TextAt(file, file.PlaceOf(line)) == line) << text;
                    EXPECT_GT(file.PlaceOf(line).line, entry.Line());
                }
            }
            for (const LookUp& lookUp : section.lookUps) {
                for (const Event& event : lookUp.events) {
                    const Place place = file.PlaceOf(event.value);
                    EXPECT_TRUE(event.value.starts_with(TextAt(file, place))) << text;
                    EXPECT_TRUE(place.line != 0 || event.value.empty() || event.value == "***" ||
                                event.value == "WORKGROUP")
                        << text;
                }
            }
        }
    }
    EXPECT_GT(continued, 20U);
}

TEST(ReadFile, TellsWhatTheModuleGivesUpFor) {
    using config::ErrorKind;
    struct Case {
        const char* text;
        const char* section;  // null: nothing
        ErrorKind kind;
    };
    const Case cases[] = {
        {"[TCP/IP]\nDHCP=true\n", nullptr, {}},
        {"[TCP/IP]\nDHCP=true\n[NicEntry2]\nDescription=x\nDHCP=true\nStatic-Route-Count=-1\n",
         nullptr,
         {}},
        {"[TCP/IP]\nDHCP=true\n[Printers]\n[NicEntry2]\nDHCP=true\n", "NicEntry2",
         ErrorKind::kUnexpectedEvent},
        {"[NicEntry1]\nDHCP=true\n[Networking]\nComputerName=PC7\n[NicEntry2]\nDescription=x\n",
         "Networking", ErrorKind::kUnexpectedEvent},
        {"[NicEntry1]\nDescription=x\nDNS-Server-Count=100001\n[Networking]\nComputerName=A\n",
         "NicEntry1", ErrorKind::kCountOutOfRange},
    };
    for (const Case& tried : cases) {
        const ScratchFile scratch(tried.text, "refused.ini");
        const File file = File::Read(scratch.Path());
        ASSERT_EQ(file.GetRefusal().has_value(), tried.section != nullptr) << tried.text;
        if (!file.GetRefusal()) {
            continue;
        }
        EXPECT_EQ(file.GetRefusal()->section->name, tried.section);
        EXPECT_EQ(file.GetRefusal()->kind, tried.kind);
        bool reached = true;
        for (const Section& section : file.Sections()) {
            EXPECT_EQ(section.reached, reached) << tried.text;
            reached = reached && &section != file.GetRefusal()->section;
        }
    }
}

}  // namespace
