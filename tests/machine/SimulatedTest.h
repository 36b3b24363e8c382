// A test on a simulated machine that serves this very program. At its end nothing unexpected may
// have been called and everything handed out must be back.
#pragma once

#include <gtest/gtest.h>

#include "machine/Simulation.h"

namespace machine::test {

class SimulatedTest : public ::testing::Test {
protected:
    SimulatedTest() : simulation_(DefaultState()) { simulation_.Attach(GetModuleHandleA(nullptr)); }

    void TearDown() override {
        EXPECT_EQ(simulation_.GetLedger().Report(), "");
        for (const std::string& what : simulation_.Unexpected()) {
            ADD_FAILURE() << "unexpected: " << what;
        }
    }

    void Fail(std::string_view plan) { simulation_.SetFaultPlan(FaultPlan::Parse(plan)); }

    Simulation simulation_;
};

}  // namespace machine::test
