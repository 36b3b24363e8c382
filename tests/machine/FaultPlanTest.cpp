#include "machine/FaultPlan.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace machine {
namespace {

TEST(FaultPlan, SaysWhatIsWrongWithItsText) {
    constexpr const char* kUnknown =
        "no platform call, WMI method or program of this name can fail";
    constexpr const char* kForm = "write call:N for any call and FUNCTION#N for one function";
    constexpr const char* kCount =
        "the count must be a whole number from 1, with an optional + after it";
    constexpr const char* kCode = "the code after \"=\" must be a decimal or 0x number of 32 bits";
    constexpr const char* kCondition =
        "write [ARGUMENT~TEXT] for an argument that holds the text, [ARGUMENT=TEXT] for one that "
        "is it";
    const std::pair<std::string, const char*> cases[] = {
        {"RegOpenKey", kUnknown},
        {"CoUninitialize", kUnknown},
        {"call", "\"call\" needs a count: call:N"},
        {"call#3", kForm},
        {"call:0", kCount},
        {"Next#-1", kCount},
        {"Next=0x123456789", kCode},
        {"call:1=0", "0 is no failing code"},
        {"Next[query]", kCondition},
        {"Next[~Caption]", kCondition},
        {"Next[query~Caption", kCondition},
        {"", "a rule must not be empty"},
        {"Next[query~Caption]2", "only #N and =CODE may follow the brackets"},
    };
    for (const auto& [text, message] : cases) {
        SCOPED_TRACE(text);
        try {
            FaultPlan::Parse("Get," + text);
            ADD_FAILURE() << "accepted";
        } catch (const FaultPlanError& error) {
            EXPECT_EQ(error.what(), "fault \"" + text + "\": " + message);
        }
    }
}

TEST(FaultPlan, HitsTheCallsThatItsRulesCount) {
    struct Case {
        const char* plan;
        std::vector<std::uint32_t> codes;  // of Next a, Get a, Next b, Get b, Next ab; 0: no fault
    };
    const Case cases[] = {
        {"  ", {0, 0, 0, 0, 0}},
        {"call:4+=0x80041003", {0, 0, 0, 0x80041003, 0x80041003}},
        {" next#2+ = 5 ,route=2", {0, 0, 0x80070005, 0, 0x80070005}},
        {"Get=0x80041002", {0, 0x80041002, 0, 0x80041002, 0}},
        {"call:1=1,Next=2", {0x80070001, 0, 0x80070002, 0, 0x80070002}},
        {"Next[of~A]#2=7", {0, 0, 0, 0, 0x80070007}},
        {"Next[OF=a]=7,Get[of=ab]", {0x80070007, 0, 0, 0, 0}},
        {"call[of~b]:2+=7", {0, 0, 0, 0x80070007, 0x80070007}},
        {"Next[of~a,b],Next[to~a],Get[of=]=7", {0, 0, 0, 0, 0}},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(one.plan);
        FaultPlan plan = FaultPlan::Parse(one.plan);
        std::vector<std::uint32_t> codes;
        for (const auto& [function, argument] :
             {std::pair("Next", "a"), std::pair("Get", "a"), std::pair("Next", "b"),
              std::pair("Get", "b"), std::pair("Next", "ab")}) {
            codes.push_back(plan.OnCall(function, {{"of", argument}}).value_or(0));
            EXPECT_EQ(plan.OnOutcome("EnableStatic", {}), std::nullopt);  // counts as no call
        }
        EXPECT_EQ(codes, one.codes);
        EXPECT_EQ(plan.CallsSeen(), 5U);
        EXPECT_EQ(plan.Fired(), 5 - static_cast<std::uint64_t>(std::ranges::count(codes, 0U)));
    }
    FaultPlan plan = FaultPlan::Parse("EnableStatic#2=84,SetGateways=0");
    EXPECT_EQ(plan.OnOutcome("SetGateways", {}), 0U);
    EXPECT_EQ(plan.OnOutcome("EnableStatic", {}), std::nullopt);
    EXPECT_EQ(plan.OnOutcome("EnableStatic", {}), 84U);
}

}  // namespace
}  // namespace machine
