#include <gmock/gmock.h>

#include "tests/support/GuardAllocator.h"

#ifdef TOOLBOX_CHECKED
namespace {

struct Mock {
    MOCK_METHOD(void, Call, ());
};

/// On Windows GoogleTest keeps the mutexes and the per-thread values that it makes on first use.
void MakeWhatGoogleTestKeeps() {
    const support::LeaksAllowed allowance;
    SCOPED_TRACE("");
    const Mock mock;
    EXPECT_CALL(mock, Call).Times(0);
}

}  // namespace
#endif

int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
#ifdef TOOLBOX_CHECKED
    MakeWhatGoogleTestKeeps();
#endif
    return RUN_ALL_TESTS();
}
