#include "host/Spelling.h"

#include <algorithm>

#include "common/util/Strings.h"

namespace host {

namespace {

/// A name longer than this is no misspelling, and comparing it would take long.
constexpr std::size_t kLongestName = 40;

bool Contains(std::string_view text, std::string_view part) {
    const auto same = [](char left, char right) {
        return util::ToUpper(left) == util::ToUpper(right);
    };
    // Not std::ranges::search: clang 14 stumbles over its subrange.
    return std::search(text.begin(), text.end(), part.begin(), part.end(), same) != text.end();
}

}  // namespace

std::string Nearest(std::string_view name, const std::vector<std::string>& names) {
    std::string nearest;
    std::size_t least = kLongestName;
    for (const std::string& known : names) {
        const std::size_t limit = std::max<std::size_t>(1, known.size() / 4);
        if (std::max(name.size(), known.size()) - std::min(name.size(), known.size()) > limit) {
            continue;
        }
        const std::size_t distance = EditDistance(name, known);
        if (distance <= limit && distance < least) {
            least = distance;
            nearest = known;
        }
    }
    for (const std::string& known : names) {
        // "DefaultGateway" for "Gateway"
        if (nearest.empty() && known.size() >= 6 && Contains(name, known)) {
            nearest = known;
        }
    }
    return nearest;
}

std::size_t EditDistance(std::string_view left, std::string_view right) {
    if (left.size() > kLongestName || right.size() > kLongestName) {
        return kLongestName;
    }
    const auto same = [&](std::size_t i, std::size_t j) {
        return util::ToUpper(left[i]) == util::ToUpper(right[j]);
    };
    std::vector<std::vector<std::size_t>> cost(left.size() + 1,
                                               std::vector<std::size_t>(right.size() + 1));
    for (std::size_t i = 0; i <= left.size(); ++i) {
        for (std::size_t j = 0; j <= right.size(); ++j) {
            if (i == 0 || j == 0) {
                cost[i][j] = i + j;
                continue;
            }
            cost[i][j] = std::min({cost[i - 1][j] + 1, cost[i][j - 1] + 1,
                                   cost[i - 1][j - 1] + (same(i - 1, j - 1) ? 0U : 1U)});
            if (i > 1 && j > 1 && same(i - 1, j - 2) && same(i - 2, j - 1)) {
                cost[i][j] = std::min(cost[i][j], cost[i - 2][j - 2] + 1);
            }
        }
    }
    return cost[left.size()][right.size()];
}

}  // namespace host
