#include <gtest/gtest.h>

#include <atomic>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <new>
#include <string>

#include "tests/toolbox/ScratchFile.h"
#include "toolbox/config/IniFile.h"

namespace {

using toolbox_tests::ScratchFile;

std::atomic<std::size_t> comparisons = 0;
std::atomic<std::size_t> refusedSize = 0;

}  // namespace

#ifdef TOOLBOX_WRAPS_FUNCTIONS
// The linker sends every call of these functions that comes from another file here (--wrap): the
// cost of the look-ups is counted and not timed, and no test takes gigabytes.
extern "C" {
bool __real__ZN4util11NoCaseEqualESt17basic_string_viewIcSt11char_traitsIcEES3_(
    std::string_view left, std::string_view right) noexcept;
bool __wrap__ZN4util11NoCaseEqualESt17basic_string_viewIcSt11char_traitsIcEES3_(
    std::string_view left, std::string_view right) noexcept {
    ++comparisons;
    return __real__ZN4util11NoCaseEqualESt17basic_string_viewIcSt11char_traitsIcEES3_(left, right);
}
bool __real__ZN4util10NoCaseLessESt17basic_string_viewIcSt11char_traitsIcEES3_(
    std::string_view left, std::string_view right) noexcept;
bool __wrap__ZN4util10NoCaseLessESt17basic_string_viewIcSt11char_traitsIcEES3_(
    std::string_view left, std::string_view right) noexcept {
    ++comparisons;
    return __real__ZN4util10NoCaseLessESt17basic_string_viewIcSt11char_traitsIcEES3_(left, right);
}

#ifdef _WIN32
#define WITH_SIZE(name) name##yRKSt9nothrow_t
#else
#define WITH_SIZE(name) name##mRKSt9nothrow_t
#endif
void* WITH_SIZE(__real__Zna)(std::size_t size, const std::nothrow_t& tag) noexcept;
void* WITH_SIZE(__wrap__Zna)(std::size_t size, const std::nothrow_t& tag) noexcept {
    constexpr std::size_t kGigabyte = std::size_t{1} << 30U;
    if (size > kGigabyte) {
        refusedSize = size;
        return nullptr;
    }
    return WITH_SIZE(__real__Zna)(size, tag);
}
}
#endif

namespace {

constexpr int kMany = 10000;

/// A look-up or an addition takes about as many comparisons as a balanced tree has levels.
void ExpectCost([[maybe_unused]] std::size_t operations) {
#ifdef TOOLBOX_WRAPS_FUNCTIONS
    EXPECT_GE(comparisons, operations);
    EXPECT_LE(comparisons, operations * 3 * std::bit_width(unsigned{kMany}));
#endif
}

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
    ExpectCost(2 * kMany);
}

/// The number's bits in two bytes that differ as an upper-case letter differs from its lower-case
/// one, and are no letters.
std::string InMarks(int number) {
    std::string marks;
    for (; number != 0; number /= 2) {
        marks += number % 2 == 0 ? '@' : '`';
    }
    return "NAME" + marks;
}

TEST(IniFileSize, LookUpsInManySectionsCostAFewComparisonsEach) {
    for (const auto nameOf : {+[](int i) { return "NAME" + std::to_string(i); }, &InMarks}) {
        std::string text;
        for (int i = 0; i < kMany; ++i) {
            text += "[" + nameOf(i) + "]\nk=" + std::to_string(i) + "\n";
        }
        const ScratchFile scratch(text);
        comparisons = 0;
        IniFile file;
        ASSERT_EQ(file.Load(scratch.Path(), false), IniFile::kSuccess);
        std::string value;
        for (int i = 0; i < kMany; ++i) {
            std::string name = nameOf(i);
            name.replace(0, 4, "name");
            ASSERT_EQ(file.GetValue(name, "K", value), IniFile::kSuccess);
            ASSERT_EQ(value, std::to_string(i));
        }
        ExpectCost(2 * kMany);
    }
}

#ifdef TOOLBOX_WRAPS_FUNCTIONS
TEST(IniFileSize, AFileAboveFourGigabytesIsNotCut) {
    const ScratchFile scratch("[A]\nk=v\n");
    const std::uintmax_t size =
        (std::uintmax_t{1} << 32U) + std::filesystem::file_size(scratch.Path());
    std::filesystem::resize_file(scratch.Path(), size);  // a hole: it takes no room
    IniFile file;
    EXPECT_EQ(file.Load(scratch.Path(), false), IniFile::kNoMemory);
    EXPECT_EQ(refusedSize, size);
}
#endif

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
