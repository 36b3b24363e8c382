// The text form of a fault plan.
#include <algorithm>
#include <charconv>

#include "machine/FaultPlan.h"
#include "machine/Text.h"

namespace machine {
namespace {

constexpr std::string_view kAnyCall = "call";
constexpr std::string_view kMarks = "#:=";  // of a count, a count of any call, a code

[[noreturn]] void Refuse(std::string_view rule, std::string_view why) {
    throw FaultPlanError("fault \"" + std::string(rule) + "\": " + std::string(why));
}

template <typename Number>
std::optional<Number> ReadNumber(std::string_view text) {
    int base = 10;
    if (text.starts_with("0x") || text.starts_with("0X")) {
        text.remove_prefix(2);
        base = 16;
    }
    Number number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
    if (text.empty() || error != std::errc() || end != text.data() + text.size()) {
        return std::nullopt;
    }
    return number;
}

/// "name[argument~text]#2+=5", taken apart from the left.
class RuleReader {
public:
    explicit RuleReader(std::string_view text) : text_(text), rest_(text) {
        rule_.text = std::string(text);
    }

    FaultRule Read() {
        if (text_.empty()) {
            Refuse(text_, "a rule must not be empty");
        }
        const std::string_view name = TakeUntil("[#:=");
        ReadCondition();
        ReadCount(EqualNoCase(name, kAnyCall));
        ReadCode();
        ReadName(name);
        return rule_;
    }

private:
    /// The text in front of the first of the marks, without blanks around it.
    std::string_view TakeUntil(std::string_view marks) {
        const std::string_view taken = rest_.substr(0, rest_.find_first_of(marks));
        rest_.remove_prefix(taken.size());
        return Trim(taken);
    }

    void ReadCondition() {
        if (!rest_.starts_with('[')) {
            return;
        }
        const std::size_t end = rest_.find(']');
        const std::string_view inside = rest_.substr(1, std::min(end, rest_.size()) - 1);
        const std::size_t mark = inside.find_first_of("~=");
        if (end == std::string_view::npos || mark == std::string_view::npos ||
            Trim(inside.substr(0, mark)).empty()) {
            Refuse(text_,
                   "write [ARGUMENT~TEXT] for an argument that holds the text, "
                   "[ARGUMENT=TEXT] for one that is it");
        }
        rule_.condition = {std::string(Trim(inside.substr(0, mark))),
                           std::string(inside.substr(mark + 1)), inside[mark] == '='};
        rest_.remove_prefix(end + 1);
        rest_ = Trim(rest_);
        if (!rest_.empty() && kMarks.find(rest_.front()) == std::string_view::npos) {
            Refuse(text_, "only #N and =CODE may follow the brackets");
        }
    }

    void ReadCount(bool isAnyCall) {
        if (!rest_.starts_with('#') && !rest_.starts_with(':')) {
            if (isAnyCall) {
                Refuse(text_, "\"call\" needs a count: call:N");
            }
            return;
        }
        if (isAnyCall != rest_.starts_with(':')) {
            Refuse(text_, "write call:N for any call and FUNCTION#N for one function");
        }
        rest_.remove_prefix(1);
        std::string_view count = TakeUntil("=");
        if (count.ends_with('+')) {
            rule_.stays = true;
            count.remove_suffix(1);
        }
        rule_.nth = ReadNumber<std::uint64_t>(count).value_or(0);
        if (rule_.nth == 0) {
            Refuse(text_, "the count must be a whole number from 1, with an optional + after it");
        }
    }

    void ReadCode() {
        if (rest_.empty()) {
            return;
        }
        rule_.code = rest_.starts_with('=') ? ReadNumber<std::uint32_t>(Trim(rest_.substr(1)))
                                            : std::nullopt;
        if (!rule_.code) {
            Refuse(text_, "the code after \"=\" must be a decimal or 0x number of 32 bits");
        }
    }

    void ReadName(std::string_view name) {
        const FaultPoint* const point = FindFaultPoint(name);
        if (!EqualNoCase(name, kAnyCall)) {
            if (point == nullptr) {
                Refuse(text_, "no platform call, WMI method or program of this name can fail");
            }
            rule_.function = point->name;
        }
        // A method may well answer 0 and change nothing; a call that gives 0 has not failed.
        if (rule_.code == 0U && (point == nullptr || point->kind == FaultPoint::Kind::kResult)) {
            Refuse(text_, "0 is no failing code");
        }
    }

    std::string_view text_;
    std::string_view rest_;
    FaultRule rule_;
};

/// The length of the rule that the text begins with: up to a comma outside brackets.
std::size_t RuleLength(std::string_view text) {
    bool isInside = false;
    const auto isEnd = [&isInside](char c) {
        isInside = isInside ? c != ']' : c == '[';
        return c == ',' && !isInside;
    };
    return static_cast<std::size_t>(std::ranges::find_if(text, isEnd) - text.begin());
}

}  // namespace

std::vector<FaultRule> ParseFaultRules(std::string_view text) {
    std::vector<FaultRule> rules;
    if (Trim(text).empty()) {
        return rules;
    }
    for (;;) {
        const std::size_t length = RuleLength(text);
        rules.push_back(RuleReader(Trim(text.substr(0, length))).Read());
        if (length == text.size()) {
            return rules;
        }
        text.remove_prefix(length + 1);
    }
}

}  // namespace machine
