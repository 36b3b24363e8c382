// The words, numbers, texts and signs of a WQL text.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace machine::cim {

struct Token {
    enum class Kind { kWord, kNumber, kText, kSign, kEnd, kWrong };
    Kind kind = Kind::kEnd;
    std::string text;  ///< without quotes and escapes
};

/// Ends with a token of the kind End. What WQL does not know is Wrong.
std::vector<Token> ReadTokens(std::string_view text);

}  // namespace machine::cim
