// Which platform calls of a simulated machine fail, and how. docs/machine-files.md describes the
// text form.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace machine {

class FaultPlanError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The arguments of a platform call by name, as the trace has them.
using CallArguments = std::vector<std::pair<std::string, std::string>>;

/// What one argument of a call must hold or be; letter case does not count.
struct ArgumentCondition {
    std::string argument;
    std::string text;
    bool isWhole = false;  ///< the argument is the text, instead of holding it

    bool Holds(const CallArguments& arguments) const;
};

struct FaultRule {
    std::string text;      ///< as it was written
    std::string function;  ///< empty: any platform call
    std::optional<ArgumentCondition> condition;
    std::uint64_t nth = 0;  ///< among the calls that the rule is about; 0: every one
    bool stays = false;     ///< from the nth on, instead of the nth alone
    std::optional<std::uint32_t> code;
};

/// The rules of a text, separated by commas outside brackets; none for blanks. Throws
/// FaultPlanError saying which rule is wrong and why.
std::vector<FaultRule> ParseFaultRules(std::string_view text);

class FaultPlan {
public:
    FaultPlan() = default;
    explicit FaultPlan(const std::vector<FaultRule>& rules);

    static FaultPlan Parse(std::string_view text) { return FaultPlan(ParseFaultRules(text)); }
    /// The nth platform call that can fail fails with its function's own code: what a sweep asks
    /// for.
    static FaultPlan FailCall(std::uint64_t nth, bool stays = false);

    /// A rule and what it has met so far.
    struct Entry {
        FaultRule rule;
        std::uint64_t calls = 0;  ///< that the rule is about
        /// Those that it made fail, by their place among the calls that can fail
        /// (TraceEntry::faultPoint).
        std::vector<std::uint64_t> failed = {};
    };
    const std::vector<Entry>& Entries() const { return entries_; }
    /// How many calls were made to fail.
    std::uint64_t Fired() const;
    /// How many calls that can fail were made.
    std::uint64_t CallsSeen() const { return callsSeen_; }

    /// Counts one platform call of the function and says whether it fails, and with which code.
    std::optional<std::uint32_t> OnCall(std::string_view function, const CallArguments& arguments);
    /// The same for what is not a platform call of its own: WMI methods and the route program. The
    /// arguments are those of the platform call that it belongs to.
    std::optional<std::uint32_t> OnOutcome(std::string_view name, const CallArguments& arguments);

private:
    std::optional<std::uint32_t> Meet(std::string_view name, const CallArguments& arguments,
                                      bool isCall);

    std::vector<Entry> entries_;
    std::uint64_t callsSeen_ = 0;
};

/// A name that a rule may use.
struct FaultPoint {
    enum class Kind { kResult, kOutcome };
    std::string_view name;
    std::uint32_t defaultCode;
    Kind kind;     ///< Outcome: a WMI method's ReturnValue or an exit code
    bool hresult;  ///< the code is an HRESULT
};

/// Every name, in alphabetical order.
const std::vector<FaultPoint>& FaultPoints();
/// Null when there is none; letter case does not count.
const FaultPoint* FindFaultPoint(std::string_view name);

}  // namespace machine
