#include "machine/Trace.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <sstream>

#include "common/sys/WmiMethods.h"
#include "common/sys/WmiQueries.h"
#include "tests/machine/SimulatedTest.h"

namespace machine::test {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

class TraceTest : public SimulatedTest {};

TEST_F(TraceTest, EachLineIsACallWithItsResultAndNoSecret) {
    Fail("Get#3=5");
    sys::renameComputer("PC2", "", "Top-Secret-9");
    Sleep(8000);
    std::string name;
    sys::getComputerName(name);
    std::ostringstream out;
    simulation_.GetTrace().WriteJsonLines(out);
    EXPECT_THAT(out.str(), Not(HasSubstr("Top-Secret-9")));
    std::istringstream in(out.str());
    std::vector<nlohmann::json> calls;
    for (std::string line; std::getline(in, line);) {
        calls.push_back(nlohmann::json::parse(line));
    }
    ASSERT_EQ(calls.size(), simulation_.GetTrace().Size());
    EXPECT_EQ(calls[0]["function"], "CoInitializeEx");
    EXPECT_EQ(calls[0]["faultPoint"], 1);
    const auto find = [&calls](const std::string& function, bool failed) {
        return *std::ranges::find_if(calls, [&](const nlohmann::json& call) {
            return call["function"] == function && call["failed"] == failed;
        });
    };
    const auto method = find("IWbemServices::ExecMethod", false);
    EXPECT_EQ(method["arguments"]["in"], "Name=\"PC2\", Password=***, UserName=\"\"");
    EXPECT_EQ(method["arguments"]["ReturnValue"], "0");
    EXPECT_EQ(method["result"], "S_OK");
    const auto get = find("IWbemClassObject::Get", true);
    EXPECT_EQ(get["result"], "0x80070005 (E_ACCESSDENIED)");
    EXPECT_TRUE(get["injected"]);
    EXPECT_EQ(get["time"], 8000);
}

}  // namespace
}  // namespace machine::test
