#include "machine/cim/Wql.h"

#include <gtest/gtest.h>

namespace machine::cim {
namespace {

// The captions' first property of each row as text, or the name of the failure.
std::string Ask(const char* text) {
    Query query;
    if (!ParseQuery(text, query)) {
        return "no query";
    }
    std::vector<Properties> rows;
    switch (RunQuery(DefaultState(), query, rows)) {
        case QueryAnswer::kNoSuchClass:
            return "no class";
        case QueryAnswer::kInvalidQuery:
            return "invalid";
        case QueryAnswer::kRows:
            break;
    }
    std::string answer;
    for (const Properties& row : rows) {
        answer += (answer.empty() ? "" : " ") + Describe(row.front().value);
    }
    return answer;
}

TEST(Wql, AnswersSelections) {
    struct Case {
        const char* query;
        const char* answer;
    };
    const Case cases[] = {
        {"select Index from Win32_NetworkAdapter", "1 2 7"},
        {"select * from Win32_ComputerSystem", "\"WORKSTATION1\""},
        {"  SELECT\tindex , CAPTION FROM win32_networkadapter  ", "1 2 7"},
        {"select Index from Win32_NetworkAdapter where Index != 2 and Index>=2", "7"},
        {"select Index from Win32_NetworkAdapter where Index=1 or Index=2 and Index=7", "1"},
        {"select Index from Win32_NetworkAdapter where NetConnectionID='ETHERNET 2'", "2"},
        {"select Index from Win32_NetworkAdapter where PNPDeviceID=\"ROOT\\\\VIRTUALNET\\\\0000\"",
         "7"},
        {"select Index from Win32_NetworkAdapterConfiguration where DNSDomain is null", "2 7"},
        {"select Index from Win32_Nothing", "no class"},
        {"select Nothing from Win32_NetworkAdapter", "invalid"},
        {"select Index from Win32_NetworkAdapter where Index='1'", "invalid"},
        {"select Index, from Win32_NetworkAdapter", "no query"},
        {"select Index from Win32_NetworkAdapter where", "no query"},
        {"select Index from Win32_NetworkAdapter where (Index=1", "no query"},
        {"select Index from Win32_NetworkAdapter where Caption='open", "no query"},
        {"select Index from Win32_NetworkAdapter where Index=4294967297", "no query"},
        {"associators of {Win32_NetworkAdapter}", "no query"},
    };
    for (const Case& one : cases) {
        EXPECT_EQ(Ask(one.query), one.answer) << one.query;
    }
}

TEST(Wql, DeepNestingIsRefusedInsteadOfExhaustingTheStack) {
    const std::string deep(100'000, '(');
    Query query;
    EXPECT_FALSE(ParseQuery("select Index from Win32_NetworkAdapter where " + deep, query));
}

}  // namespace
}  // namespace machine::cim
