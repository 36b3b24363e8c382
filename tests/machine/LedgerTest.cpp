// What is not given back, or given back twice, is noticed.
#include "machine/Ledger.h"

#include <gmock/gmock.h>

#include "tests/machine/RawWmi.h"
#include "tests/machine/SimulatedTest.h"

namespace machine::test {
namespace {

using ::testing::HasSubstr;

class LedgerTest : public SimulatedTest {};

TEST_F(LedgerTest, FindsAnInterfaceThatIsKeptAndAReleaseTooMany) {
    Connection connection;
    ComPtr<IEnumWbemClassObject> rows;
    ComPtr<IWbemClassObject> first;
    connection.Query(L"select Name from Win32_ComputerSystem", rows);
    connection.Next(rows, first);
    IWbemClassObject* const row = first.Detach();
    EXPECT_THAT(simulation_.GetLedger().Report(),
                HasSubstr("not returned: IWbemClassObject (Next, call "));
    EXPECT_EQ(row->Release(), 0U);
    EXPECT_EQ(row->Release(), 0U);
    Variant value;
    EXPECT_EQ(row->Get(L"Name", 0, value.Receive(), nullptr, nullptr), WBEM_E_NOT_FOUND);
    ASSERT_EQ(simulation_.GetLedger().Misuse().size(), 2U);
    EXPECT_THAT(simulation_.GetLedger().Misuse()[0],
                HasSubstr("the IWbemClassObject was released before"));
    rows.Reset();
    simulation_.GetLedger().Clear();
    // The connection is still held and still comes back.
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_FALSE);
}

TEST_F(LedgerTest, FindsKeysHandlesAndInitialisationsThatAreKept) {
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    HKEY key = nullptr;
    RegOpenKeyExA(HKEY_LOCAL_MACHINE, "SYSTEM", 0, KEY_READ, &key);
    HANDLE readEnd = nullptr;
    HANDLE writeEnd = nullptr;
    CreatePipe(&readEnd, &writeEnd, nullptr, 0);
    const std::string report = simulation_.GetLedger().Report();
    EXPECT_EQ(report,
              "not returned: COM initialisation (CoInitializeEx, call 1), 2 times\n"
              "not returned: HKEY (RegOpenKeyExA, call 3, SYSTEM)\n"
              "not returned: pipe handle (CreatePipe, call 4, read end)\n"
              "not returned: pipe handle (CreatePipe, call 4, write end)\n");
    CoUninitialize();
    CoUninitialize();
    CloseHandle(writeEnd);
    // A closing that was made to fail is no leak and may be repeated.
    Fail("RegCloseKey#1,CloseHandle#1=123");
    EXPECT_EQ(RegCloseKey(key), ERROR_INVALID_HANDLE);
    EXPECT_FALSE(CloseHandle(readEnd));
    EXPECT_EQ(GetLastError(), 123U);
    EXPECT_EQ(simulation_.GetLedger().Report(), "");
    EXPECT_TRUE(CloseHandle(readEnd));
    EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
    EXPECT_EQ(RegCloseKey(key), ERROR_INVALID_HANDLE);
    EXPECT_EQ(simulation_.GetLedger().Misuse().size(), 1U);
    simulation_.GetLedger().Clear();
}

}  // namespace
}  // namespace machine::test
