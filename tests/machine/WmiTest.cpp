#include <gtest/gtest.h>

#include "tests/machine/RawWmi.h"
#include "tests/machine/SimulatedTest.h"

namespace machine::test {
namespace {

class WmiTest : public SimulatedTest {};

TEST_F(WmiTest, DeliversTheVariantTypesOfWindowsAndOnlyWhatWasSelected) {
    struct Case {
        const wchar_t* query;
        const wchar_t* property;
        VARTYPE type;
    };
    const Case cases[] = {
        {L"select Index from Win32_NetworkAdapterConfiguration where Index=1", L"Index", VT_I4},
        {L"select DHCPEnabled from Win32_NetworkAdapterConfiguration where Index=1", L"DHCPEnabled",
         VT_BOOL},
        {L"SELECT IPAddress FROM win32_NETWORKadapterCONFIGURATION WHERE index = 1", L"ipaddress",
         VT_ARRAY | VT_BSTR},
        {L"select DefaultIPGateway from Win32_NetworkAdapterConfiguration where Index=7",
         L"DefaultIPGateway", VT_NULL},
        {L"select DNSDomainSuffixSearchOrder from Win32_NetworkAdapterConfiguration where Index=1",
         L"DNSDomainSuffixSearchOrder", VT_ARRAY | VT_BSTR},
        {L"select DNSDomain from Win32_NetworkAdapterConfiguration where Index=2", L"DNSDomain",
         VT_NULL},
        {L"select Workgroup from Win32_ComputerSystem", L"Workgroup", VT_BSTR},
        {L"select Destination, Metric1 from Win32_IP4PersistedRouteTable", L"Metric1", VT_I4},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(testing::Message() << one.query);
        Connection connection;
        ComPtr<IEnumWbemClassObject> rows;
        ComPtr<IWbemClassObject> row;
        ASSERT_EQ(connection.Query(one.query, rows), S_OK);
        ASSERT_EQ(connection.Next(rows, row), S_OK);
        Variant value;
        EXPECT_EQ(row->Get(one.property, 0, value.Receive(), nullptr, nullptr), S_OK);
        EXPECT_EQ(value.Type(), one.type);
        EXPECT_EQ(row->Get(L"Caption", 0, value.Receive(), nullptr, nullptr), WBEM_E_NOT_FOUND);
    }
}

TEST_F(WmiTest, ARefusedStartOfComMayStillBeEnded) {
    Fail("CoInitializeEx#1");
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), E_OUTOFMEMORY);
    CoUninitialize();
    CoUninitialize();
    EXPECT_EQ(simulation_.GetLedger().Misuse().size(), 1U) << "but only once";
    simulation_.GetLedger().Clear();
}

}  // namespace
}  // namespace machine::test
