#include "machine/FaultPlan.h"

#include <algorithm>

#include "machine/Text.h"

namespace machine {
namespace {

bool Strikes(const FaultRule& rule, std::uint64_t count) {
    return rule.nth == 0 || count == rule.nth || (rule.stays && count > rule.nth);
}

std::uint32_t CodeFor(const FaultRule& rule, const FaultPoint& point) {
    const std::uint32_t code = rule.code.value_or(point.defaultCode);
    return point.hresult && code <= 0xFFFF ? 0x80070000U | code : code;
}

}  // namespace

bool ArgumentCondition::Holds(const CallArguments& arguments) const {
    return std::ranges::any_of(arguments, [this](const auto& pair) {
        const auto& [name, value] = pair;
        return EqualNoCase(name, argument) &&
               (isWhole ? EqualNoCase(value, text) : ContainsNoCase(value, text));
    });
}

FaultPlan::FaultPlan(const std::vector<FaultRule>& rules) {
    for (const FaultRule& rule : rules) {
        entries_.push_back({rule});
    }
}

FaultPlan FaultPlan::FailCall(std::uint64_t nth, bool stays) {
    FaultRule rule;
    rule.nth = nth;
    rule.stays = stays;
    return FaultPlan({rule});
}

std::uint64_t FaultPlan::Fired() const {
    std::uint64_t fired = 0;
    for (const Entry& entry : entries_) {
        fired += entry.failed.size();
    }
    return fired;
}

std::optional<std::uint32_t> FaultPlan::Meet(std::string_view name, const CallArguments& arguments,
                                             bool isCall) {
    Entry* struck = nullptr;
    for (Entry& entry : entries_) {
        const FaultRule& rule = entry.rule;
        const bool isNamed = rule.function.empty() ? isCall : rule.function == name;
        if (!isNamed || (rule.condition && !rule.condition->Holds(arguments))) {
            continue;
        }
        ++entry.calls;
        // The first rule counts; the others count the call.
        if (struck == nullptr && Strikes(rule, entry.calls)) {
            struck = &entry;
        }
    }
    const FaultPoint* const point = struck == nullptr ? nullptr : FindFaultPoint(name);
    if (point == nullptr) {
        return std::nullopt;
    }
    struck->failed.push_back(callsSeen_);
    return CodeFor(struck->rule, *point);
}

std::optional<std::uint32_t> FaultPlan::OnCall(std::string_view function,
                                               const CallArguments& arguments) {
    ++callsSeen_;
    return Meet(function, arguments, true);
}

std::optional<std::uint32_t> FaultPlan::OnOutcome(std::string_view name,
                                                  const CallArguments& arguments) {
    return Meet(name, arguments, false);
}

}  // namespace machine
