#include <gtest/gtest.h>

#include <atomic>
#include <string>

#include "tests/toolbox/ScratchFile.h"
#include "toolbox/config/IniFile.h"

namespace {

using toolbox_tests::ScratchFile;

std::atomic<std::size_t> comparisons = 0;

}  // namespace

#ifdef TOOLBOX_COUNTS_COMPARISONS
// The linker sends every call of util::NoCaseEqual that comes from another file here (--wrap), so
// that the cost of the look-ups is counted and not timed.
extern "C" {
bool __real__ZN4util11NoCaseEqualESt17basic_string_viewIcSt11char_traitsIcEES3_(
    std::string_view left, std::string_view right) noexcept;
bool __wrap__ZN4util11NoCaseEqualESt17basic_string_viewIcSt11char_traitsIcEES3_(
    std::string_view left, std::string_view right) noexcept {
    ++comparisons;
    return __real__ZN4util11NoCaseEqualESt17basic_string_viewIcSt11char_traitsIcEES3_(left, right);
}
}
#endif

namespace {

void ExpectCost(std::size_t operations) {
#ifdef TOOLBOX_COUNTS_COMPARISONS
    EXPECT_GE(comparisons, operations);
    EXPECT_LE(comparisons, 4 * operations);
#else
    static_cast<void>(operations);
#endif
}

TEST(IniFileSize, LookUpsOfTenThousandKeysCostAFewComparisonsEach) {
    constexpr int kKeys = 10000;
    std::string text = "[A]\n";
    for (int i = 0; i < kKeys; ++i) {
        text += "Key" + std::to_string(i) + "=" + std::to_string(i) + "\n";
    }
    const ScratchFile scratch(text + "key77=dead\n");
    comparisons = 0;
    IniFile file;
    ASSERT_EQ(file.Load(scratch.Path(), false), IniFile::kSuccess);
    std::string value;
    for (int i = 0; i < kKeys; ++i) {
        ASSERT_EQ(file.GetValue("a", "KEY" + std::to_string(i), value), IniFile::kSuccess);
        ASSERT_EQ(value, std::to_string(i));
        ASSERT_EQ(file.GetValue("a", "none" + std::to_string(i), value), IniFile::kKeyNotFound);
    }
    ExpectCost(2 * kKeys);  // each look-up finds its section too
}

TEST(IniFileSize, LookUpsInTenThousandSectionsCostAFewComparisonsEach) {
    constexpr int kSections = 10000;
    std::string text;
    for (int i = 0; i < kSections; ++i) {
        text += "[Section" + std::to_string(i) + "]\nk=" + std::to_string(i) + "\n";
    }
    const ScratchFile scratch(text);
    comparisons = 0;
    IniFile file;
    ASSERT_EQ(file.Load(scratch.Path(), false), IniFile::kSuccess);
    std::string name;
    std::string value;
    int walked = 0;
    for (auto result = file.GetFirstSection(name); result == IniFile::kSuccess;
         result = file.GetNextSection(name)) {
        ASSERT_EQ(file.GetValue(name, "K", value), IniFile::kSuccess);
        ASSERT_EQ(value, std::to_string(walked++));
    }
    EXPECT_EQ(walked, kSections);
    ExpectCost(2 * kSections);
}

TEST(IniFileSize, AMergingLoadOfTenThousandKeysCostsAFewComparisonsEach) {
    constexpr int kKeys = 10000;
    std::string text = "[A]\n";
    for (int i = 0; i < kKeys; ++i) {
        text += "Key" + std::to_string(i) + "=v\n";
    }
    const ScratchFile scratch(text);
    comparisons = 0;
    IniFile file;
    ASSERT_EQ(file.Load(scratch.Path(), true), IniFile::kSuccess);
    ASSERT_EQ(file.Load(scratch.Path(), true), IniFile::kSuccess);
    EXPECT_EQ(file.Entries("A")->size(), static_cast<std::size_t>(kKeys));
    ExpectCost(2 * kKeys);
}

TEST(IniFileSize, AContinuedValueOfManyLinesIsPutTogetherOnce) {
    constexpr int kLines = 100000;
    std::string text = "[A]\nk=v\n";
    std::string expected = "v";
    for (int i = 0; i < kLines; ++i) {
        text += "more\n";
        expected += "\nmore";
    }
    const ScratchFile scratch(text);
    IniFile file;
    ASSERT_EQ(file.Load(scratch.Path(), false), IniFile::kSuccess);
    std::string value;
    ASSERT_EQ(file.GetValue("A", "k", value), IniFile::kSuccess);
    EXPECT_TRUE(value == expected);
}

TEST(IniFileSize, HugeLinesAreLinesLikeOthers) {
    const std::string megabyte(1 << 20, 'x');
    {
        const ScratchFile scratch("[" + megabyte + "]\n" + megabyte + "=" + megabyte + "\nm=w");
        IniFile file;
        ASSERT_EQ(file.Load(scratch.Path(), false), IniFile::kSuccess);
        std::string value;
        EXPECT_EQ(file.GetValue(megabyte, megabyte, value), IniFile::kSuccess);
        EXPECT_TRUE(value == megabyte);
        EXPECT_EQ(file.GetValue(megabyte, "m", value), IniFile::kSuccess);
        EXPECT_EQ(value, "w");
    }
    {
        const ScratchFile scratch(std::string(64 << 20, '['));
        IniFile file;
        ASSERT_EQ(file.Load(scratch.Path(), false), IniFile::kSuccess);
        std::string name;
        ASSERT_EQ(file.GetFirstSection(name), IniFile::kSuccess);
        EXPECT_EQ(name.size(), (64U << 20) - 1);
        EXPECT_NE(file.GetNextSection(name), IniFile::kSuccess);
    }
}

}  // namespace
