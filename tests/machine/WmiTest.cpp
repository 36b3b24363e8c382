#include <gtest/gtest.h>

#include <thread>

#include "tests/machine/RawWmi.h"
#include "tests/machine/SimulatedTest.h"

namespace machine::test {
namespace {

class WmiTest : public SimulatedTest {};

constexpr const wchar_t* adapterClass = L"Win32_NetworkAdapterConfiguration";

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
         L"DNSDomainSuffixSearchOrder", VT_NULL},
        {L"select Workgroup from Win32_ComputerSystem", L"Workgroup", VT_BSTR},
        {L"select Destination, Metric1 from Win32_IP4PersistedRouteTable", L"Metric1", VT_I4},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(testing::Message() << one.query);
        Connection connection;
        Held<IEnumWbemClassObject> rows;
        ASSERT_EQ(connection.Query(one.query, rows), S_OK);
        Held<IWbemClassObject> row;
        ULONG count = 0;
        ASSERT_EQ(rows->Next(forever, 1, row.Receive(), &count), S_OK);
        Variant value;
        EXPECT_EQ(row->Get(one.property, 0, &value, nullptr, nullptr), S_OK);
        EXPECT_EQ(value.Type(), one.type);
        EXPECT_EQ(row->Get(L"Caption", 0, &value, nullptr, nullptr), WBEM_E_NOT_FOUND);
    }
}

TEST_F(WmiTest, AWrongQueryFailsAtOnceOrAtTheFirstRowAsItsFlagsSay) {
    struct Case {
        const wchar_t* query;
        WBEMSTATUS code;
    };
    const Case cases[] = {
        {L"select Name from Win32_NoSuchClass", WBEM_E_INVALID_CLASS},
        {L"select Nothing from Win32_ComputerSystem", WBEM_E_INVALID_QUERY},
        {L"select Name from Win32_ComputerSystem where", WBEM_E_INVALID_QUERY},
        {L"delete everything", WBEM_E_INVALID_QUERY},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(testing::Message() << one.query);
        Connection connection;
        Held<IEnumWbemClassObject> rows;
        EXPECT_EQ(connection.Query(one.query, rows, WBEM_FLAG_FORWARD_ONLY), one.code);
        EXPECT_EQ(rows.Get(), nullptr);
        EXPECT_EQ(connection.Query(one.query, rows), S_OK);
        Held<IWbemClassObject> row;
        ULONG count = 1;
        EXPECT_EQ(rows->Next(forever, 1, row.Receive(), &count), one.code);
        EXPECT_EQ(count, 0U);
        EXPECT_EQ(row.Get(), nullptr);
    }
    EXPECT_EQ(simulation_.TakeUnexpected().size(), 2 * std::size(cases));
}

TEST_F(WmiTest, PathsAndMethodsThatAreNotThereGiveWindowsErrors) {
    struct Case {
        const wchar_t* className;
        const wchar_t* path;
        const wchar_t* method;
        WBEMSTATUS code;
    };
    const Case cases[] = {
        {L"Win32_NoSuchClass", L"", L"Rename", WBEM_E_NOT_FOUND},
        {L"=", L"", L"Rename", WBEM_E_INVALID_OBJECT_PATH},
        {adapterClass, L"", L"Rename", WBEM_E_NOT_FOUND},
        {adapterClass, L"Win32_NetworkAdapterConfiguration.Index=99", L"EnableDHCP",
         WBEM_E_NOT_FOUND},
        {adapterClass, L"Win32_NetworkAdapterConfiguration", L"EnableDHCP", WBEM_E_INVALID_METHOD},
        {adapterClass, L"Win32_ComputerSystem.Name=\"WORKSTATION1\"", L"EnableDHCP",
         WBEM_E_INVALID_METHOD},
        {adapterClass, L"Win32_NetworkAdapterConfiguration.Index=", L"EnableDHCP",
         WBEM_E_INVALID_OBJECT_PATH},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(testing::Message() << one.className << " " << one.path);
        Connection connection;
        EXPECT_EQ(connection.Call(one.className, one.path, one.method), std::nullopt);
        EXPECT_EQ(connection.Result(), one.code);
    }
    EXPECT_FALSE(simulation_.TakeUnexpected().empty());
}

TEST_F(WmiTest, AMethodMayAnswerThatARestartIsNeededOrWhateverThePlanSays) {
    const wchar_t* path = L"Win32_NetworkAdapterConfiguration.Index=2";
    Connection connection;
    Fail("EnableDHCP#1=84");
    EXPECT_EQ(connection.Call(adapterClass, path, L"EnableDHCP"), 84);
    EXPECT_EQ(simulation_.GetState().adapters[1].dhcpEnabled, false);
    Change([](State& state) { state.system.adapterChangesNeedRestart = true; });
    EXPECT_EQ(connection.Call(adapterClass, path, L"EnableDHCP"), 1);
    EXPECT_EQ(simulation_.GetState().adapters[1].dhcpEnabled, true);
    Variant gateways(std::vector<std::wstring>{L"nonsense"});
    EXPECT_EQ(
        connection.Call(adapterClass, path, L"SetGateways", {{L"DefaultIPGateway", &gateways}}),
        70);
}

TEST_F(WmiTest, ValuesOfTheWrongTypeAreRefused) {
    Connection connection;
    Variant number(5L);
    EXPECT_EQ(connection.Call(L"Win32_NetworkAdapterConfiguration", L"", L"EnableStatic",
                              {{L"IPAddress", &number}}),
              std::nullopt);
    EXPECT_EQ(connection.Result(), WBEM_E_TYPE_MISMATCH);
}

TEST_F(WmiTest, ARestartMakesARenameEffective) {
    {
        Connection connection;
        Variant name(L"sales-pc-000000007");
        EXPECT_EQ(
            connection.Call(L"Win32_ComputerSystem", L"Win32_ComputerSystem.Name=\"workstation1\"",
                            L"Rename", {{L"Name", &name}}),
            0);
    }
    EXPECT_EQ(simulation_.GetState().computerName, "WORKSTATION1");
    simulation_.Restart();
    EXPECT_EQ(simulation_.GetState().computerName, "SALES-PC-000000");
    EXPECT_EQ(simulation_.GetState().hostName, "sales-pc-000000007");
    EXPECT_EQ(simulation_.GetState().pendingComputerName, std::nullopt);
}

TEST_F(WmiTest, SecurityIsSetOnceUntilTheMachineRestarts) {
    const auto setSecurity = [] {
        return CoInitializeSecurity(nullptr, -1, nullptr, nullptr, RPC_C_AUTHN_LEVEL_CONNECT,
                                    RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE, nullptr);
    };
    EXPECT_EQ(setSecurity(), CO_E_NOTINITIALIZED);
    ASSERT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
    EXPECT_EQ(setSecurity(), S_OK);
    EXPECT_EQ(setSecurity(), RPC_E_TOO_LATE);
    simulation_.Restart();
    EXPECT_EQ(setSecurity(), S_OK);
    CoUninitialize();
}

TEST_F(WmiTest, AThreadKeepsTheApartmentThatItChose) {
    EXPECT_EQ(CoInitialize(nullptr), S_OK);
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), RPC_E_CHANGED_MODE);
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_FALSE);
    std::thread([] {
        EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
        CoUninitialize();
    }).join();
    CoUninitialize();
    CoUninitialize();
}

TEST_F(WmiTest, ARefusedStartOfComMayStillBeEnded) {
    Fail("CoInitializeEx#1");
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), E_OUTOFMEMORY);
    CoUninitialize();
    CoUninitialize();
    EXPECT_EQ(simulation_.GetLedger().Misuse().size(), 1U) << "but only once";
    simulation_.GetLedger().Clear();
}

TEST_F(WmiTest, ThreadsAreServedSideBySide) {
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([] {
            for (int turn = 0; turn < 50; ++turn) {
                Connection connection;
                Held<IEnumWbemClassObject> rows;
                Held<IWbemClassObject> row;
                ULONG count = 0;
                EXPECT_EQ(connection.Query(L"select Name from Win32_ComputerSystem", rows), S_OK);
                EXPECT_EQ(rows->Next(forever, 1, row.Receive(), &count), S_OK);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(simulation_.GetTrace().Count("ExecQuery"), 200U);
    simulation_.ForgetCalls();
    EXPECT_EQ(simulation_.GetTrace().Size(), 0U);
}

}  // namespace
}  // namespace machine::test
