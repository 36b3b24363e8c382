#include "machine/cim/Wql.h"

#include <algorithm>
#include <charconv>
#include <compare>
#include <limits>

#include "machine/Text.h"
#include "machine/cim/WqlTokens.h"

namespace machine::cim {
namespace {

class Parser {
public:
    explicit Parser(std::string_view text) : tokens_(ReadTokens(text)) {}

    bool ReadQuery(Query& query) {
        if (!TakeWord("select") || !ReadProperties(query.properties) || !TakeWord("from") ||
            !ReadName(query.className)) {
            return false;
        }
        if (TakeWord("where")) {
            query.condition = std::make_unique<Condition>();
            if (!ReadAlternatives(*query.condition)) {
                return false;
            }
        }
        return Current().kind == Token::Kind::kEnd;
    }

private:
    const Token& Current() const { return tokens_[at_]; }

    bool TakeWord(std::string_view word) {
        const bool is = Current().kind == Token::Kind::kWord && EqualNoCase(Current().text, word);
        at_ += is ? 1 : 0;
        return is;
    }

    bool TakeSign(std::string_view sign) {
        const bool is = Current().kind == Token::Kind::kSign && Current().text == sign;
        at_ += is ? 1 : 0;
        return is;
    }

    bool ReadName(std::string& name) {
        if (Current().kind != Token::Kind::kWord) {
            return false;
        }
        name = tokens_[at_++].text;
        return true;
    }

    bool ReadProperties(std::vector<std::string>& properties) {
        if (TakeSign("*")) {
            return true;
        }
        do {
            if (!ReadName(properties.emplace_back())) {
                return false;
            }
        } while (TakeSign(","));
        return true;
    }

    using Reader = bool (Parser::*)(Condition&);

    /// parts joined by a word: "a and b and c"
    bool ReadJoined(Condition& condition, std::string_view word, Condition::Kind kind,
                    Reader reader) {
        if (!(this->*reader)(condition)) {
            return false;
        }
        while (TakeWord(word)) {
            Condition joined;
            joined.kind = kind;
            joined.parts.push_back(std::move(condition));
            if (!(this->*reader)(joined.parts.emplace_back())) {
                return false;
            }
            condition = std::move(joined);
        }
        return true;
    }

    bool ReadAlternatives(Condition& condition) {
        return ReadJoined(condition, "or", Condition::Kind::kOr, &Parser::ReadConjunction);
    }

    bool ReadConjunction(Condition& condition) {
        return ReadJoined(condition, "and", Condition::Kind::kAnd, &Parser::ReadTerm);
    }

    bool ReadTerm(Condition& condition) {
        // Deeper nesting than any query needs would only exhaust the stack.
        if (++depth_ > 100) {
            return false;
        }
        if (TakeWord("not")) {
            condition.kind = Condition::Kind::kNot;
            return ReadTerm(condition.parts.emplace_back());
        }
        if (TakeSign("(")) {
            return ReadAlternatives(condition) && TakeSign(")");
        }
        if (!ReadName(condition.property)) {
            return false;
        }
        if (TakeWord("is")) {
            const bool negated = TakeWord("not");
            condition.kind = Condition::Kind::kIsNull;
            condition.comparison = negated ? "<>" : "=";
            return TakeWord("null");
        }
        return ReadComparison(condition.comparison) && ReadLiteral(condition.literal);
    }

    bool ReadComparison(std::string& comparison) {
        for (const std::string_view sign : {"=", "<>", "!=", "<=", ">=", "<", ">"}) {
            if (TakeSign(sign)) {
                comparison = sign == "!=" ? "<>" : sign;
                return true;
            }
        }
        return false;
    }

    bool ReadLiteral(Value& literal) {
        const Token& token = Current();
        if (token.kind == Token::Kind::kText) {
            literal = token.text;
        } else if (token.kind == Token::Kind::kNumber) {
            std::int64_t number = 0;
            const char* last = token.text.data() + token.text.size();
            const auto [end, error] = std::from_chars(token.text.data(), last, number);
            const bool fits = number >= std::numeric_limits<std::int32_t>::min() &&
                              number <= std::numeric_limits<std::uint32_t>::max();
            if (error != std::errc() || end != last || !fits) {
                return false;
            }
            literal = static_cast<std::int32_t>(number);
        } else if (EqualNoCase(token.text, "true") || EqualNoCase(token.text, "false")) {
            literal = EqualNoCase(token.text, "true");
        } else if (!EqualNoCase(token.text, "null")) {
            return false;
        }
        ++at_;
        return true;
    }

    std::vector<Token> tokens_;
    std::size_t at_ = 0;
    int depth_ = 0;
};

/// Numbers and truth values compare by their number, everything else as text without regard to
/// case.
std::strong_ordering Compare(const Value& left, const Value& right) {
    const auto number = [](const Value& value) {
        const bool* flag = std::get_if<bool>(&value);
        return flag != nullptr ? static_cast<std::int32_t>(*flag) : std::get<std::int32_t>(value);
    };
    if (const auto* text = std::get_if<std::string>(&left)) {
        return LowerCase(*text) <=> LowerCase(std::get<std::string>(right));
    }
    return number(left) <=> number(right);
}

bool Decide(std::strong_ordering order, std::string_view comparison) {
    if (comparison == "=") {
        return std::is_eq(order);
    }
    if (comparison == "<>") {
        return std::is_neq(order);
    }
    if (comparison == "<") {
        return std::is_lt(order);
    }
    if (comparison == "<=") {
        return std::is_lteq(order);
    }
    return comparison == ">" ? std::is_gt(order) : std::is_gteq(order);
}

/// Whether the condition names properties of the class and compares each with a literal of its
/// kind.
bool Fits(const Condition& condition, const Class& definition) {
    if (!condition.parts.empty()) {
        return std::ranges::all_of(condition.parts, [&definition](const Condition& part) {
            return Fits(part, definition);
        });
    }
    const Property* property = FindProperty(definition.properties, condition.property);
    if (property == nullptr) {
        return false;
    }
    if (condition.kind == Condition::Kind::kIsNull ||
        std::holds_alternative<std::monostate>(condition.literal)) {
        return true;
    }
    switch (property->type) {
        case Type::kText:
            return std::holds_alternative<std::string>(condition.literal);
        case Type::kTexts:
        case Type::kUInt16s:
            return false;  // lists cannot be compared
        default:
            return !std::holds_alternative<std::string>(condition.literal);
    }
}

bool Holds(const Condition& condition, const Properties& row) {
    const auto holds = [&row](const Condition& part) { return Holds(part, row); };
    switch (condition.kind) {
        case Condition::Kind::kAnd:
            return std::ranges::all_of(condition.parts, holds);
        case Condition::Kind::kOr:
            return std::ranges::any_of(condition.parts, holds);
        case Condition::Kind::kNot:
            return !holds(condition.parts.front());
        case Condition::Kind::kIsNull:
        case Condition::Kind::kCompare:
            break;
    }
    const Value& value = FindProperty(row, condition.property)->value;
    const bool isNull = std::holds_alternative<std::monostate>(value);
    if (condition.kind == Condition::Kind::kIsNull ||
        std::holds_alternative<std::monostate>(condition.literal)) {
        return isNull == (condition.comparison == "=");
    }
    // Null is neither equal to nor different from a literal.
    return !isNull && Decide(Compare(value, condition.literal), condition.comparison);
}

}  // namespace

bool ParseQuery(std::string_view text, Query& query) {
    return Parser(text).ReadQuery(query);
}

QueryAnswer RunQuery(const State& state, const Query& query, std::vector<Properties>& rows) {
    const Class* definition = FindClass(query.className);
    if (definition == nullptr) {
        return QueryAnswer::kNoSuchClass;
    }
    const bool knowsAll = std::ranges::all_of(query.properties, [definition](const auto& name) {
        return FindProperty(definition->properties, name) != nullptr;
    });
    if (!knowsAll || (query.condition && !Fits(*query.condition, *definition))) {
        return QueryAnswer::kInvalidQuery;
    }
    OptionalIndex index;
    if (query.condition && query.condition->kind == Condition::Kind::kCompare &&
        query.condition->comparison == "=") {
        index = IndexOf(query.condition->property, query.condition->literal);
    }
    for (Properties& row : definition->rows(state, index)) {
        if (query.condition && !Holds(*query.condition, row)) {
            continue;
        }
        if (query.properties.empty()) {
            rows.push_back(std::move(row));
            continue;
        }
        Properties selected;
        for (const std::string& name : query.properties) {
            selected.push_back(*FindProperty(row, name));
        }
        rows.push_back(std::move(selected));
    }
    return QueryAnswer::kRows;
}

}  // namespace machine::cim
