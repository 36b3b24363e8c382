// The registry wrapper on the simulated machine: exact calls, and every one of them failing.
#include "common/sys/Registry.h"

#include <windows.h>

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "common/err/GeneralError.h"
#include "common/sys/nic/NicRegistry.h"
#include "tests/sys/simulated/Sweep.h"

namespace {

using namespace sys_tests;
using testing::ElementsAre;

constexpr DWORD kForeignError = 4711;
constexpr const char* kKey = "SOFTWARE\\Test";

machine::State WithKey() {
    machine::State state = machine::DefaultState();
    state.registry = {{kKey, {machine::RegistryValue::Text("Value", "content")}}};
    return state;
}

TEST(SimulatedRegistry, AccessFollowsCreateReadOnlyAndView) {
    struct Case {
        bool create;
        bool readOnly;
        int view;
        const char* access;
    };
    const Case cases[] = {
        {false, true, 0, "0x80000000"},  {false, true, 1, "0x80000200"},
        {false, true, -1, "0x80000000"}, {false, false, 0, "0xF003F"},
        {true, true, 1, "0xF023F"},
    };
    for (const Case& c : cases) {
        Machine machine(WithKey());
        sys::Registry key;
        key.SetSubkey(kKey);
        EXPECT_EQ(machine.Run([&] {
            if (c.view == 1 && c.readOnly && !c.create) {
                key.OpenForReading(c.view);
            } else {
                key.Open(c.create, c.readOnly, c.view);
            }
            key.Close();
        }),
                  Success());
        const std::string open = c.create
                                     ? "RegCreateKeyExA subkey=SOFTWARE\\Test options=0x0 access="
                                     : "RegOpenKeyExA subkey=SOFTWARE\\Test access=";
        EXPECT_THAT(machine.Texts(), ElementsAre(open + c.access, "RegCloseKey"));
    }
}

TEST(SimulatedRegistry, AnyFailingCallIsItsError) {
    const Operation operation = [](std::string& outputs) {
        std::string value = "kept";
        const Show show(outputs, [&] { return value; });
        sys::Registry key;
        key.SetSubkey(kKey);
        key.OpenForReading(0);
        SetLastError(kForeignError);
        key.ReadString("Value", value);
        key.Close();
    };
    const auto check = [](const FaultyRun& run) {
        if (run.fault.Is("RegOpenKeyExA")) {
            EXPECT_EQ(run.outcome, RegistryFailure("OpenIntern() - Cannot open key.", 813, 3,
                                                   ERROR_ACCESS_DENIED));
            EXPECT_EQ(run.outputs, "kept");
        } else if (run.fault.Is("RegQueryValueExA")) {
            // The code is the thread's: these functions return theirs and leave that alone.
            EXPECT_EQ(run.outcome,
                      RegistryFailure("ReadString() - Read failed.", 268, 6, kForeignError));
            // Assigned before the second query's result is looked at.
            EXPECT_EQ(run.outputs, run.fault.ordinal == 1 ? "kept" : "");
        } else {
            EXPECT_EQ(run.outcome,
                      RegistryFailure("Close() - RegCloseKey failed", 184, 2, kForeignError));
            EXPECT_EQ(run.outputs, "content");
        }
    };
    SweepOptions options;
    options.start = WithKey();
    Sweep(operation, check, options);
}

TEST(SimulatedRegistry, CreatingFailsLikeOpening) {
    const Operation operation = [](std::string&) {
        sys::Registry key;
        key.SetSubkey("SOFTWARE\\New");
        key.Open(true, false, 0);
        SetLastError(kForeignError);
    };
    const auto check = [](const FaultyRun& run) {
        const bool created = run.fault.Is("RegCloseKey");
        EXPECT_EQ(run.outcome,
                  created ? RegistryFailure("Close() - RegCloseKey failed", 184, 2, kForeignError)
                          : RegistryFailure("OpenIntern() - Cannot open key.", 813, 3,
                                            ERROR_ACCESS_DENIED));
        EXPECT_EQ(run.ChangedTheMachine(), created);
    };
    Sweep(operation, check, {});
}

TEST(SimulatedRegistry, AFailedCloseLeavesTheKeyOpen) {
    Machine machine(WithKey());
    machine.Fail("RegCloseKey#1");
    sys::Registry key;
    key.SetSubkey(kKey);
    key.OpenForReading(0);
    EXPECT_THROW(key.Close(), err::CGeneralError);
    EXPECT_THROW(key.SetSubkey("x"), err::CGeneralError);
    EXPECT_EQ(machine.Run([&] { key.Close(); }), Success());
}

TEST(SimulatedRegistry, ADestructorDuringUnwindingKeepsItsOwnErrorToItself) {
    Machine machine(WithKey());
    machine.Fail("RegCloseKey");
    // An object that lives wholly inside the unwinding still reports its own.
    struct DuringUnwinding {
        Outcome* outcome;
        ~DuringUnwinding() {
            *outcome = OutcomeOf([] {
                sys::Registry key;
                key.SetSubkey(kKey);
                key.OpenForReading(0);
                SetLastError(kForeignError);
            });
        }
    };
    Outcome inner;
    EXPECT_EQ(machine.Run([&inner] {
        const DuringUnwinding scope{&inner};
        sys::Registry key;
        key.SetSubkey(kKey);
        key.OpenForReading(0);
        std::string value;
        SetLastError(kForeignError);
        key.ReadString("Missing", value);
    }),
              RegistryFailure("ReadString() - Read failed.", 268, 6, kForeignError));
    EXPECT_EQ(machine.Texts("RegCloseKey").size(), 2U);
    EXPECT_EQ(inner, RegistryFailure("Close() - RegCloseKey failed", 184, 2, kForeignError));
}

TEST(SimulatedRegistry, AdapterValuesAreReadBelowTheirKeys) {
    Machine machine;
    const machine::State& state = machine->GetState();
    EXPECT_EQ(sys::readLocationInformation(*state.adapters[0].pnpDeviceId),
              "PCI bus 2, device 1, function 0");
    EXPECT_EQ(sys::readNameServer(*state.adapters[1].settingId), "198.51.100.10");
}

}  // namespace
