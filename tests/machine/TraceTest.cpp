#include "machine/Trace.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <sstream>

#include "tests/machine/RawWmi.h"
#include "tests/machine/SimulatedTest.h"

namespace machine::test {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

class TraceTest : public SimulatedTest {
protected:
    void Rename() {
        Connection connection;
        connection.Call(L"Win32_ComputerSystem", L"Win32_ComputerSystem.Name=\"WORKSTATION1\"",
                        L"Rename", L"password", Variant::FromText("Top-Secret-9"));
        Sleep(8000);
    }
};

TEST_F(TraceTest, EachLineIsACallWithItsResultAndNoSecret) {
    Fail("Next=5");
    Rename();
    {
        Connection connection;
        ComPointer<IEnumWbemClassObject> rows;
        ComPointer<IWbemClassObject> row;
        connection.Query(L"select Name from Win32_ComputerSystem", rows);
        connection.Next(rows, row);
    }
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
    const auto find = [&calls](const std::string& function) {
        return *std::ranges::find_if(
            calls, [&](const nlohmann::json& call) { return call["function"] == function; });
    };
    const auto method = find("IWbemServices::ExecMethod");
    EXPECT_EQ(method["arguments"]["in"], "Name=null, Password=***, UserName=null");
    EXPECT_EQ(method["arguments"]["ReturnValue"], "1210");
    EXPECT_EQ(method["result"], "S_OK");
    EXPECT_FALSE(method["failed"]);
    const auto next = find("IEnumWbemClassObject::Next");
    EXPECT_EQ(next["result"], "0x80070005 (E_ACCESSDENIED)");
    EXPECT_TRUE(next["failed"]);
    EXPECT_TRUE(next["injected"]);
    EXPECT_EQ(next["time"], 8000);
}

TEST_F(TraceTest, TheChromeFormatIsChosenByTheFilesName) {
    Rename();
    const char* file = "calls.trace.json";
    simulation_.GetTrace().WriteFile(file);
    std::ifstream in(file, std::ios::binary);
    const auto trace = nlohmann::json::parse(std::string(std::istreambuf_iterator<char>(in), {}));
    in.close();
    EXPECT_EQ(std::remove(file), 0);
    ASSERT_EQ(trace["traceEvents"].size(), simulation_.GetTrace().Size());
    std::uint64_t end = 0;
    for (const auto& event : trace["traceEvents"]) {
        EXPECT_EQ(event["ph"], "X");
        EXPECT_GE(event["ts"].get<std::uint64_t>(), end) << event;
        end = event["ts"].get<std::uint64_t>() + event["dur"].get<std::uint64_t>();
        if (event["name"] == "Sleep") {
            EXPECT_GE(event["dur"], 8'000'000);
        }
    }
    EXPECT_THROW(simulation_.GetTrace().WriteFile("no-such-folder/calls.jsonl"),
                 std::runtime_error);
}

}  // namespace
}  // namespace machine::test
