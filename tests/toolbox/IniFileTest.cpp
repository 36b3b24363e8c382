#include "toolbox/config/IniFile.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/ScratchFile.h"

namespace {

using support::ScratchFile;
using namespace std::string_literals;

/// Every section in the order of the walk, each with its entries: "[name]line:key=value|...".
std::string Dump(IniFile& file) {
    std::string dump;
    std::string section;
    for (std::uint32_t result = file.GetFirstSection(section); result == IniFile::kSuccess;
         result = file.GetNextSection(section)) {
        dump += "[" + section + "]";
        for (const IniFile::Entry& entry : *file.Entries(section)) {
            dump += std::to_string(entry.line) + ":" + std::string(entry.key) + "=" +
                    std::string(entry.value) + "|";
        }
    }
    return dump;
}

std::string Parsed(std::string_view text) {
    const ScratchFile scratch(text);
    IniFile file;
    EXPECT_EQ(file.Load(scratch.Path(), false), IniFile::kSuccess);
    EXPECT_EQ(file.Path(), scratch.Path());
    return Dump(file);
}

struct ParseCase {
    const char* what;
    std::string text;
    std::string dump;
};

TEST(IniFile, EveryShapeOfLine) {
    const ParseCase cases[] = {
        {"one opening bracket", "[", "[]"},
        {"one equals sign", "=", "[]1:=|"},
        {"CR LF", "[A]\r\nk=v\r\n\r\nm=w\r\n", "[A]2:k=v|4:m=w|"},
        {"a lone CR cuts the line", "[A]\nk=v\rm=w\nn=x", "[A]2:k=v|3:n=x|"},
        {"CR alone is no line end", "[A]\rk=v\rm=w", "[A]"},
        {"blanks and tabs around everything", " \t[ \tA b\t ] \t\n\t k \t=\t v w \t\n",
         "[A b]2:k=v w|"},
        {"other white space stays", "[A]\nk=\vv\f", "[A]2:k=\vv\f|"},
        {"the first equals sign splits", "[A]\nKey = value with = sign",
         "[A]2:Key=value with = sign|"},
        {"an empty key", "[A]\n=v", "[A]2:=v|"},
        {"comments keep their place", "; one\n[A]\n# two = 2\nk=v ; three\n  ; four",
         "[]1:=; one|[A]3:=# two = 2|4:k=v ; three|5:=; four|"},
        {"keys before any section", "k=v\n[A]\nk=w", "[]1:k=v|[A]3:k=w|"},
        {"an unnamed section in brackets is the same", "k=v\n[ ]\nm=w", "[]1:k=v|3:m=w|"},
        {"text after the closing bracket", "[A] k=v\n[B]]\n", "[A][B]"},
        {"no closing bracket", "[A\nk=v", "[A]2:k=v|"},
        {"brackets in brackets", "[[A]]\nk=v", "[[A]2:k=v|"},
        {"a repeated section continues the first", "[A]\nk=v\n[B]\n[ a ]\nk=w",
         "[A]2:k=v|5:k=w|[B]"},
        {"a continuation line", "[A]\nk=v\nmore\n\n  and more\nm=w",
         "[A]2:k=v\nmore\nand more|6:m=w|"},
        {"a continued comment", "[A]\n;c\nmore", "[A]2:=;c\nmore|"},
        {"continuation before any entry", "lost\n[A]\nlost too\nk=v", "[A]4:k=v|"},
        {"continuation goes to the section's last entry", "[A]\nk=v\n[B]\nm=w\n[A]\nmore",
         "[A]2:k=v\nmore|[B]4:m=w|"},
        {"a bracket inside a line is no section", "[A]\nk=[B]\nx[C]", "[A]2:k=[B]\nx[C]|"},
        {"NULs are bytes", "[A\0B]\nk\0=v\0w\n\0"s, "[A\0B]2:k\0=v\0w\n\0|"s},
        {"bytes above 127", "[\xC4]\n\xE4=\xFF\xFE", "[\xC4]2:\xE4=\xFF\xFE|"},
        {"a byte-order mark hides the first header", "\xEF\xBB\xBF[A]\nk=v", "[]2:k=v|"},
        {"only line feeds", "\n\n\r\n", ""},
    };
    for (const ParseCase& test : cases) {
        EXPECT_EQ(Parsed(test.text), test.dump) << test.what;
    }
}

TEST(IniFile, LookUpsDisregardCaseAndTheFirstEntryWins) {
    const ScratchFile scratch("[TCP/IP]\nKey=one\nkey=two\n[tcp/ip]\nKEY=three\nOther=x\n");
    IniFile file;
    ASSERT_EQ(file.Load(scratch.Path(), false), IniFile::kSuccess);

    std::string value = "before";
    EXPECT_EQ(file.GetValue("NoSection", "Key", value), IniFile::kSectionNotFound);
    EXPECT_EQ(file.GetValue("TCP/IP", "Missing", value), IniFile::kKeyNotFound);
    EXPECT_EQ(value, "before");
    for (const char* const section : {"TCP/IP", "tcp/ip", "Tcp/Ip"}) {
        value.clear();
        EXPECT_EQ(file.GetValue(section, "kEY", value), IniFile::kSuccess);
        EXPECT_EQ(value, "one") << section;
    }
}

TEST(IniFile, CaseSensitiveKeysLeaveSectionsAlone) {
    const ScratchFile scratch("[A]\nKey=one\nkey=two\n");
    IniFile file(true);
    ASSERT_EQ(file.Load(scratch.Path(), false), IniFile::kSuccess);
    std::string value;
    EXPECT_EQ(file.GetValue("a", "key", value), IniFile::kSuccess);
    EXPECT_EQ(value, "two");
    EXPECT_EQ(file.GetValue("a", "KEY", value), IniFile::kKeyNotFound);
}

TEST(IniFile, TheWalkOfWhatWasLoadedLastEndsAndStartsAgain) {
    IniFile file;
    std::string name = "before";
    EXPECT_EQ(file.GetFirstSection(name), IniFile::kSectionNotFound);
    EXPECT_EQ(file.GetNextSection(name), IniFile::kSectionNotFound);
    EXPECT_EQ(name, "before");

    const ScratchFile discarded("[C]\nk=v\n", "discarded.ini");
    const ScratchFile scratch("[A]\n[B]\n");
    ASSERT_EQ(file.Load(discarded.Path(), false), IniFile::kSuccess);
    ASSERT_EQ(file.Load(scratch.Path(), false), IniFile::kSuccess);
    EXPECT_EQ(file.Entries("C"), nullptr);
    for (int pass = 0; pass < 2; ++pass) {
        EXPECT_EQ(file.GetFirstSection(name), IniFile::kSuccess);
        EXPECT_EQ(name, "A");
        EXPECT_EQ(file.GetNextSection(name), IniFile::kSuccess);
        EXPECT_EQ(name, "B");
        EXPECT_NE(file.GetNextSection(name), IniFile::kSuccess);
        EXPECT_NE(file.GetNextSection(name), IniFile::kSuccess);
        EXPECT_EQ(name, "B");
    }
}

TEST(IniFile, AFileThatCannotBeReadLeavesTheReaderAsItWas) {
    const ScratchFile good("[A]\nk=v\n");
    IniFile file;
    ASSERT_EQ(file.Load(good.Path(), false), IniFile::kSuccess);

    const ScratchFile empty("", "empty.ini");
    std::vector<std::string> unreadable{"no-such-file.ini", empty.Path(), ""};
#ifdef _WIN32
    unreadable.emplace_back(".");  // elsewhere a directory opens
#endif
    for (const std::string& path : unreadable) {
        EXPECT_EQ(file.Load(path, false), IniFile::kFileError) << path;
        EXPECT_EQ(file.Load(path, true), IniFile::kFileError) << path;
        EXPECT_EQ(file.Path(), good.Path());
        EXPECT_EQ(Dump(file), "[A]2:k=v|");
    }
}

TEST(IniFile, AMergingLoadReplacesWhatDiffersAndSaysSo) {
    struct MergeCase {
        const char* what;
        std::string second;
        std::uint32_t result;
        std::string dump;
    };
    const MergeCase cases[] = {
        {"a new key and a new section", "[A]\nn=x\n[B]\no=y", IniFile::kSuccess,
         "[A]2:k=v|3:m=w|2:n=x|[B]4:o=y|"},
        {"an equal value", "[a]\nK=v", IniFile::kSuccess, "[A]2:k=v|3:m=w|"},
        {"a value that differs in case alone", "[A]\nk=V", IniFile::kSuccess, "[A]2:k=v|3:m=w|"},
        {"another value", "[A]\n\nK=x", IniFile::kValueReplaced, "[A]3:k=x|3:m=w|"},
        {"one differs, one is new", "[A]\nk=x\ny\nn=z", IniFile::kValueReplaced,
         "[A]2:k=x\ny|3:m=w|4:n=z|"},
    };
    const ScratchFile first("[A]\nk=v\nm=w\n", "first.ini");
    for (const MergeCase& test : cases) {
        const ScratchFile second(test.second, "second.ini");
        IniFile file;
        ASSERT_EQ(file.Load(first.Path(), false), IniFile::kSuccess);
        EXPECT_EQ(file.Load(second.Path(), true), test.result) << test.what;
        EXPECT_EQ(Dump(file), test.dump) << test.what;
        const bool plain = test.result == IniFile::kSuccess;
        EXPECT_EQ(file.Path(), plain ? second.Path() : first.Path()) << test.what;
        EXPECT_EQ(file.ValuesModified(), !plain) << test.what;
        EXPECT_EQ(file.EntriesModified(), test.dump.ends_with("n=z|")) << test.what;
    }
}

TEST(IniFile, TheFirstLineSaysHowLinesEnd) {
    const std::pair<const char*, IniFile::LineEnding> cases[] = {
        {"[A]", IniFile::LineEnding::kNone},
        {"[A]\nk=v\r\n", IniFile::LineEnding::kLineFeed},
        {"[A]\r\nk=v\n", IniFile::LineEnding::kCarriageReturnLineFeed},
    };
    for (const auto& [text, ending] : cases) {
        const ScratchFile scratch(text);
        IniFile file;
        ASSERT_EQ(file.Load(scratch.Path(), false), IniFile::kSuccess);
        EXPECT_EQ(file.Ending(), ending) << text;
    }
}

}  // namespace
