#include "host/check/Finding.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace host::check {

void Findings::Add(Finding finding) {
    ++(finding.severity == Severity::kError ? errors_ : warnings_);
    if (list_.size() < kKept) {
        list_.push_back(std::move(finding));
    }
}

void Findings::Sort() {
    const auto order = [](const Finding& finding) {
        const bool isError = finding.severity == Severity::kError;
        return std::tuple(finding.place.line, finding.place.column, isError ? 0 : 1);
    };
    std::ranges::stable_sort(list_, [&](const Finding& left, const Finding& right) {
        return order(left) < order(right);
    });
}

std::string Quoted(std::string_view text) {
    constexpr std::size_t kShown = 60;
    std::string quoted = "\"";
    quoted += text.substr(0, kShown);
    return quoted + (text.size() > kShown ? "...\"" : "\"");
}

}  // namespace host::check
