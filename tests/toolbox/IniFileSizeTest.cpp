#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <filesystem>
#include <new>
#include <string>

#include "tests/support/ScratchFile.h"
#include "toolbox/config/IniFile.h"

namespace {

using support::ScratchFile;

std::atomic<std::size_t> refusedSize = 0;

}  // namespace

/// No test takes gigabytes: the one that asks for them is refused.
void* operator new[](std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    constexpr std::size_t kGigabyte = std::size_t{1} << 30U;
    if (size > kGigabyte) {
        refusedSize = size;
        return nullptr;
    }
    try {
        return ::operator new[](size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

namespace {

// Enough that a search through all names at each look-up would take many seconds.
constexpr int kMany = 20'000;

/// Fails when it ends that late.
class Hurry {
public:
    ~Hurry() { EXPECT_LT(std::clock() - start_, 4 * CLOCKS_PER_SEC); }

private:
    const std::clock_t start_ = std::clock();
};

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

TEST(IniFileSize, LookUpsOfManyKeysAreQuick) {
    const Hurry hurry;
    const ScratchFile scratch("[A]\n" + Repeated("Key#=#\n") + "key77=dead\n");
    IniFile file;
    ASSERT_EQ(file.Load(scratch.Path(), false), IniFile::kSuccess);
    std::string value;
    for (int i = 0; i < kMany; ++i) {
        ASSERT_EQ(file.GetValue("a", "KEY" + std::to_string(i), value), IniFile::kSuccess);
        ASSERT_EQ(value, std::to_string(i));
        ASSERT_EQ(file.GetValue("a", "none" + std::to_string(i), value), IniFile::kKeyNotFound);
    }
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

TEST(IniFileSize, LookUpsInManySectionsAreQuick) {
    const Hurry hurry;
    for (const auto nameOf : {+[](int i) { return "NAME" + std::to_string(i); }, &InMarks}) {
        std::string text;
        for (int i = 0; i < kMany; ++i) {
            text += "[" + nameOf(i) + "]\nk=" + std::to_string(i) + "\n";
        }
        const ScratchFile scratch(text);
        IniFile file;
        ASSERT_EQ(file.Load(scratch.Path(), false), IniFile::kSuccess);
        std::string value;
        for (int i = 0; i < kMany; ++i) {
            std::string name = nameOf(i);
            name.replace(0, 4, "name");
            ASSERT_EQ(file.GetValue(name, "K", value), IniFile::kSuccess);
            ASSERT_EQ(value, std::to_string(i));
        }
    }
}

TEST(IniFileSize, AFileAboveFourGigabytesIsNotCut) {
    const ScratchFile scratch("[A]\nk=v\n");
    const std::uintmax_t size =
        (std::uintmax_t{1} << 32U) + std::filesystem::file_size(scratch.Path());
    std::filesystem::resize_file(scratch.Path(), size);  // a hole: it takes no room
    IniFile file;
    EXPECT_EQ(file.Load(scratch.Path(), false), IniFile::kNoMemory);
    EXPECT_EQ(refusedSize, size);
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
