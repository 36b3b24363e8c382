#include "machine/FaultPlan.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace machine {
namespace {

TEST(FaultPlan, SaysWhatIsWrongWithItsText) {
    constexpr const char* unknown = "no platform call, WMI method or program of this name can fail";
    constexpr const char* form = "write call:N for any call and FUNCTION#N for one function";
    constexpr const char* count =
        "the count must be a whole number from 1, with an optional + behind it";
    constexpr const char* code = "the code behind \"=\" must be a decimal or 0x number of 32 bits";
    const std::pair<std::string, const char*> cases[] = {
        {"RegOpenKey", unknown},
        {"CoUninitialize", unknown},
        {"call", "\"call\" needs a count: call:N"},
        {"call#3", form},
        {"call:0", count},
        {"Next#-1", count},
        {"Next=0x123456789", code},
        {"call:1=0", "0 is no failing code"},
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
        std::vector<std::uint32_t> codes;  // of Next, Get, Next, Get, Next; 0: no fault
    };
    const Case cases[] = {
        {"  ", {0, 0, 0, 0, 0}},
        {"call:4+=0x80041003", {0, 0, 0, 0x80041003, 0x80041003}},
        {" next#2+ = 5 ,route=2", {0, 0, 0x80070005, 0, 0x80070005}},
        {"Get=0x80041002", {0, 0x80041002, 0, 0x80041002, 0}},
        {"call:1=1,Next=2", {0x80070001, 0, 0x80070002, 0, 0x80070002}},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(one.plan);
        FaultPlan plan = FaultPlan::Parse(one.plan);
        std::vector<std::uint32_t> codes;
        for (const char* function : {"Next", "Get", "Next", "Get", "Next"}) {
            codes.push_back(plan.OnCall(function).value_or(0));
            EXPECT_EQ(plan.OnOutcome("EnableStatic"), std::nullopt);  // counts as no call
        }
        EXPECT_EQ(codes, one.codes);
        EXPECT_EQ(plan.CallsSeen(), 5U);
        EXPECT_EQ(plan.Fired(), 5 - static_cast<std::uint64_t>(std::ranges::count(codes, 0U)));
    }
    FaultPlan plan = FaultPlan::Parse("EnableStatic#2=84,SetGateways=0");
    EXPECT_EQ(plan.OnOutcome("SetGateways"), 0U);
    EXPECT_EQ(plan.OnOutcome("EnableStatic"), std::nullopt);
    EXPECT_EQ(plan.OnOutcome("EnableStatic"), 84U);
}

}  // namespace
}  // namespace machine
