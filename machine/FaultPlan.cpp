#include "machine/FaultPlan.h"

#include <algorithm>
#include <charconv>

#include "machine/Text.h"

namespace machine {
namespace {

constexpr std::string_view anyCall = "call";

const FaultPoint* FindPoint(std::string_view name) {
    const auto& points = FaultPoints();
    const auto found = std::ranges::find_if(
        points, [name](const FaultPoint& point) { return EqualNoCase(point.name, name); });
    return found == points.end() ? nullptr : &*found;
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

[[noreturn]] void Refuse(std::string_view rule, std::string_view why) {
    throw FaultPlanError("fault \"" + std::string(rule) + "\": " + std::string(why));
}

FaultRule ParseRule(std::string_view text) {
    FaultRule rule;
    rule.text = text;
    if (text.empty()) {
        Refuse(text, "a rule must not be empty");
    }
    std::string_view rest = text;
    if (const auto equals = rest.find('='); equals != std::string_view::npos) {
        rule.code = ReadNumber<std::uint32_t>(Trim(rest.substr(equals + 1)));
        if (!rule.code) {
            Refuse(text, "the code behind \"=\" must be a decimal or 0x number of 32 bits");
        }
        rest = Trim(rest.substr(0, equals));
    }
    const auto mark = rest.find_first_of("#:");
    const std::string_view name = Trim(rest.substr(0, mark));
    const bool isAnyCall = EqualNoCase(name, anyCall);
    if (mark != std::string_view::npos) {
        if (isAnyCall != (rest[mark] == ':')) {
            Refuse(text, "write call:N for any call and FUNCTION#N for one function");
        }
        std::string_view count = Trim(rest.substr(mark + 1));
        if (count.ends_with('+')) {
            rule.stays = true;
            count.remove_suffix(1);
        }
        rule.nth = ReadNumber<std::uint64_t>(count).value_or(0);
        if (rule.nth == 0) {
            Refuse(text, "the count must be a whole number from 1, with an optional + behind it");
        }
    }
    if (isAnyCall) {
        if (rule.nth == 0) {
            Refuse(text, "\"call\" needs a count: call:N");
        }
    } else {
        const FaultPoint* point = FindPoint(name);
        if (point == nullptr) {
            Refuse(text, "no platform call, WMI method or program of this name can fail");
        }
        rule.function = point->name;
        // A method may well answer 0 and change nothing; a call that gives 0 has not failed.
        if (rule.code == 0U && point->kind == FaultPoint::Kind::Result) {
            Refuse(text, "0 is no failing code");
        }
    }
    if (isAnyCall && rule.code == 0U) {
        Refuse(text, "0 is no failing code");
    }
    return rule;
}

bool Matches(const FaultRule& rule, std::uint64_t count) {
    return rule.nth == 0 || count == rule.nth || (rule.stays && count > rule.nth);
}

std::uint32_t CodeFor(const FaultRule& rule, const FaultPoint& point) {
    const std::uint32_t code = rule.code.value_or(point.defaultCode);
    return point.hresult && code <= 0xFFFF ? 0x80070000U | code : code;
}

}  // namespace

FaultPlan::FaultPlan(std::vector<FaultRule> rules)
    : rules_(std::move(rules)), firings_(rules_.size()) {}

FaultPlan FaultPlan::Parse(std::string_view text) {
    std::vector<FaultRule> rules;
    if (Trim(text).empty()) {
        return FaultPlan();
    }
    for (std::size_t start = 0; start <= text.size();) {
        const std::size_t end = std::min(text.find(',', start), text.size());
        rules.push_back(ParseRule(Trim(text.substr(start, end - start))));
        start = end + 1;
    }
    return FaultPlan(std::move(rules));
}

FaultPlan FaultPlan::FailCall(std::uint64_t nth, bool stays) {
    return FaultPlan({FaultRule{"", nth, stays, std::nullopt, ""}});
}

std::uint64_t FaultPlan::CountOf(std::string_view function) {
    const auto found = counts_.find(function);
    return found != counts_.end() ? ++found->second
                                  : counts_.emplace(std::string(function), 1).first->second;
}

template <class Matching>
std::optional<std::uint32_t> FaultPlan::Fire(std::string_view function, Matching matches) {
    const FaultPoint* const point = FindPoint(function);
    for (std::size_t i = 0; point != nullptr && i < rules_.size(); ++i) {
        if (matches(rules_[i])) {
            ++fired_;
            ++firings_[i];
            return CodeFor(rules_[i], *point);
        }
    }
    return std::nullopt;
}

std::optional<std::uint32_t> FaultPlan::OnCall(std::string_view function) {
    ++callsSeen_;
    const std::uint64_t count = CountOf(function);
    return Fire(function, [&](const FaultRule& rule) {
        return rule.function.empty() ? Matches(rule, callsSeen_)
                                     : rule.function == function && Matches(rule, count);
    });
}

std::optional<std::uint32_t> FaultPlan::OnOutcome(std::string_view name) {
    const std::uint64_t count = CountOf(name);
    return Fire(
        name, [&](const FaultRule& rule) { return rule.function == name && Matches(rule, count); });
}

}  // namespace machine
