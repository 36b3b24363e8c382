#include "machine/cim/WqlTokens.h"

#include <algorithm>

namespace machine::cim {
namespace {

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

bool IsWordCharacter(char c) {
    return c == '_' || IsDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

/// Each takes its token off the front of the text.
Token TakeText(std::string_view& text) {
    const char quote = text.front();
    Token token{Token::Kind::kWrong, {}};  // until the closing quote is seen
    std::size_t at = 1;
    for (; at < text.size() && text[at] != quote; ++at) {
        if (text[at] == '\\' && at + 1 < text.size()) {
            ++at;
        }
        token.text += text[at];
    }
    if (at < text.size()) {
        token.kind = Token::Kind::kText;
        ++at;
    }
    text.remove_prefix(at);
    return token;
}

Token TakeWord(std::string_view& text) {
    const bool isNumber = text.front() == '-' || IsDigit(text.front());
    std::size_t length = 1;
    while (length < text.size() && IsWordCharacter(text[length])) {
        ++length;
    }
    Token token{isNumber ? Token::Kind::kNumber : Token::Kind::kWord,
                std::string(text.substr(0, length))};
    text.remove_prefix(length);
    return token;
}

Token TakeSign(std::string_view& text) {
    constexpr std::string_view kSigns[] = {"<>", "!=", "<=", ">=", "=", "<",
                                           ">",  "(",  ")",  ",",  "*"};
    const auto* const sign = std::ranges::find_if(
        kSigns, [text](std::string_view known) { return text.starts_with(known); });
    if (sign == std::end(kSigns)) {
        text.remove_prefix(1);
        return {Token::Kind::kWrong, {}};
    }
    text.remove_prefix(sign->size());
    return {Token::Kind::kSign, std::string(*sign)};
}

}  // namespace

std::vector<Token> ReadTokens(std::string_view text) {
    std::vector<Token> tokens;
    for (;;) {
        text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
        if (text.empty()) {
            tokens.emplace_back();
            return tokens;
        }
        const char first = text.front();
        if (first == '"' || first == '\'') {
            tokens.push_back(TakeText(text));
        } else if (first == '-' || IsWordCharacter(first)) {
            tokens.push_back(TakeWord(text));
        } else {
            tokens.push_back(TakeSign(text));
        }
    }
}

}  // namespace machine::cim
