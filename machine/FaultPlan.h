// Which platform calls of a simulated machine fail, and how.
//
// Text form: rules separated by commas.
//   call:17             the 17th platform call that can fail, with that function's own failing code
//   call:17=0x80070005  the same with a given code
//   RegOpenKeyExA       every call of the function
//   RegOpenKeyExA#2=5   its second call, with code 5
//   Next#3+             the third and every later call; "call:17+" does the same for all functions
//   EnableStatic=84     a WMI method: it is reached, changes nothing and gives this ReturnValue
//   route=2             the route program exits with this code and changes nothing
// A code is decimal or 0x hexadecimal. For functions that give an HRESULT, a code from 1 to 65535
// stands for the HRESULT of that Windows error.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace machine {

class FaultPlanError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct FaultRule {
    std::string function;   // empty: any platform call
    std::uint64_t nth = 0;  // 0: every call
    bool stays = false;     // from the nth on, instead of the nth alone
    std::optional<std::uint32_t> code;
    std::string text;  // as it was written; empty for a rule that never was

    bool operator==(const FaultRule&) const = default;
};

class FaultPlan {
public:
    FaultPlan() = default;
    explicit FaultPlan(std::vector<FaultRule> rules);

    // Throws FaultPlanError saying which rule is wrong and why.
    static FaultPlan Parse(std::string_view text);
    // The nth platform call that can fail fails with its function's own code: what a sweep asks
    // for.
    static FaultPlan FailCall(std::uint64_t nth, bool stays = false);

    const std::vector<FaultRule>& Rules() const { return rules_; }
    // How many calls were made to fail.
    std::uint64_t Fired() const { return fired_; }
    // Whether a call was made to fail by the rule at this place in Rules().
    bool HasFired(std::size_t rule) const { return firings_[rule] != 0; }
    // How many calls that can fail were made.
    std::uint64_t CallsSeen() const { return callsSeen_; }

    // Counts one platform call of the function and says whether it fails, and with which code.
    std::optional<std::uint32_t> OnCall(std::string_view function);
    // The same for what is not a platform call of its own: WMI methods and the route program.
    std::optional<std::uint32_t> OnOutcome(std::string_view name);

private:
    std::uint64_t CountOf(std::string_view function);

    // The code with which the first rule that matches makes the call fail.
    template <class Matching>
    std::optional<std::uint32_t> Fire(std::string_view function, Matching matches);

    std::vector<FaultRule> rules_;
    std::vector<std::uint64_t> firings_;  // by rule
    std::map<std::string, std::uint64_t, std::less<>> counts_;
    std::uint64_t callsSeen_ = 0;
    std::uint64_t fired_ = 0;
};

// A name that a plan may use.
struct FaultPoint {
    enum class Kind { Result, Outcome };
    std::string_view name;
    std::uint32_t defaultCode;
    Kind kind;     // Outcome: a WMI method's ReturnValue or an exit code
    bool hresult;  // the code is an HRESULT
};

// Every name, in alphabetical order.
const std::vector<FaultPoint>& FaultPoints();

}  // namespace machine
