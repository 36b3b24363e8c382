#include "common/util/Strings.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <clocale>
#include <limits>
#include <string>

namespace {

using namespace std::string_literals;

TEST(Strings, StringToIntReadsAsFarAsItCan) {
    struct NumberCase {
        std::string text;
        std::uint32_t base;
        std::int32_t number;
    };
    const NumberCase cases[] = {
        {"", 10, 0},
        {"0x10", 10, 0},
        {"0x10", 16, 16},
        {"-ff", 16, -255},
        {" \t\n\v\f\r42 apples", 10, 42},
        {"+7", 10, 7},
        {"+-7", 10, 0},
        {"- 7", 10, 0},
        {"apples", 10, 0},
        {"2147483647", 10, 2147483647},
        {"-2147483648", 10, std::numeric_limits<std::int32_t>::min()},
        {"2147483648", 10, 2147483647},
        {"-99999999999999999999", 10, std::numeric_limits<std::int32_t>::min()},
        {"\xB2", 10, 0},
    };
    for (const NumberCase& test : cases) {
        EXPECT_EQ(util::StringToInt(test.text, test.base), test.number)
            << '"' << test.text << "\" base " << test.base;
    }
}

TEST(Strings, ComparisonsFollowTheClassicLocale) {
    struct OrderCase {
        std::string left;
        std::string right;
        bool less;
        bool equal;
    };
    const OrderCase cases[] = {
        {"", "", false, true},
        {"NicEntry", "NICENTRY", false, true},
        {"Route", "route1", true, false},
        {"b", "A", false, false},
        {"_", "a", false, false},  // upper case sorts before the underline
        {"\xE4", "\xC4", false, false},
        {"\xC4", "\xE4", true, false},
        {"z", "\xC4", true, false},  // bytes are unsigned
        {"a\0b"s, "a\0c"s, true, false},
    };
#ifdef _WIN32
    constexpr const char* kLocales[] = {"C", ".1252"};
#else
    constexpr const char* kLocales[] = {"C"};
#endif
    for (const char* const locale : kLocales) {
        ASSERT_NE(std::setlocale(LC_ALL, locale), nullptr) << locale;
        for (const OrderCase& test : cases) {
            EXPECT_EQ(util::NoCaseLess(test.left, test.right), test.less)
                << test.left << " < " << test.right;
            EXPECT_EQ(util::NoCaseEqual(test.left, test.right), test.equal)
                << test.left << " = " << test.right;
            EXPECT_EQ(util::NoCaseEqual(test.right, test.left), test.equal);
        }
    }
    std::setlocale(LC_ALL, "C");
}

TEST(Strings, TrimBlanksTakesBlanksAndTabsOnly) {
    EXPECT_EQ(util::TrimBlanks(" \t a \t b\t "), "a \t b");
    EXPECT_EQ(util::TrimBlanks("\r\n\v"), "\r\n\v");
    EXPECT_EQ(util::TrimBlanks(" \t "), "");
}

TEST(Strings, ASecretIsOverwrittenWhereItStood) {
    std::string secret = "a secret that is longer than any small buffer";
    const std::size_t length = secret.size();
    const char* const memory = secret.data();
    {
        const util::SecretGuard guard(secret);
        secret.resize(5);  // what was written past the end is erased too
    }
    EXPECT_TRUE(secret.empty());
    ASSERT_EQ(secret.data(), memory);  // still the string's own memory
    EXPECT_TRUE(std::all_of(memory, memory + length, [](char byte) { return byte == 0; }));
}

}  // namespace
