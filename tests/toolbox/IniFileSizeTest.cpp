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

constexpr int kMany = 10000;

/// As many pieces of text as `pattern`, in which the number of the piece stands for every "#".
std::string Repeated(std::string_view pattern) {
    std::string text;
    for (int i = 0; i < kMany; ++i) {
        for (const char letter : pattern) {
            text += letter == '#' ? std::to_string(i) : std::string(1, letter);
        }
    }
    return text;
}

TEST(IniFileSize, LookUpsOfManyKeysCostAFewComparisonsEach) {
    const ScratchFile scratch("[A]\n" + Repeated("Key#=#\n") + "key77=dead\n");
    comparisons = 0;
    IniFile file;
    ASSERT_EQ(file.Load(scratch.Path(), false), IniFile::kSuccess);
    std::string value;
    for (int i = 0; i < kMany; ++i) {
        ASSERT_EQ(file.GetValue("a", "KEY" + std::to_string(i), value), IniFile::kSuccess);
        ASSERT_EQ(value, std::to_string(i));
        ASSERT_EQ(file.GetValue("a", "none" + std::to_string(i), value), IniFile::kKeyNotFound);
    }
    ExpectCost(2 * kMany);  // each look-up finds its section too
}

TEST(IniFileSize, LookUpsInManySectionsCostAFewComparisonsEach) {
    const ScratchFile scratch(Repeated("[Section#]\nk=#\n"));
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
    EXPECT_EQ(walked, kMany);
    ExpectCost(2 * kMany);
}

TEST(IniFileSize, LongLinesAndValuesOfManyLinesAreLikeOthers) {
    const std::string megabyte(1 << 20, 'x');
    const ScratchFile scratch("[" + megabyte + "]\n" + megabyte + "=" + megabyte + "\nm=w\n" +
                              Repeated("#\n"));
    IniFile file;
    ASSERT_EQ(file.Load(scratch.Path(), false), IniFile::kSuccess);
    std::string value;
    EXPECT_EQ(file.GetValue(megabyte, megabyte, value), IniFile::kSuccess);
    EXPECT_TRUE(value == megabyte);
    EXPECT_EQ(file.GetValue(megabyte, "m", value), IniFile::kSuccess);
    EXPECT_TRUE(value == "w" + Repeated("\n#"));
}

}  // namespace
