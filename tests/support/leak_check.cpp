// The leak check runs once every test has finished, while the system's GL and audio threads
// are still idle. Left to the end of the process it would race those threads as they exit,
// and on a loaded machine the checker itself could crash after every test had passed.
#include <gtest/gtest.h>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

namespace {

class LeakCheckAfterTests : public testing::Environment {
public:
    void TearDown() override {
#if defined(__SANITIZE_ADDRESS__)
        // Reports and fails as the check at exit would; the one at exit is then skipped.
        __lsan_do_leak_check();
#endif
    }
};

const testing::Environment* const registered =
    testing::AddGlobalTestEnvironment(new LeakCheckAfterTests);

}  // namespace
