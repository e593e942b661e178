#include "end_to_end/command.h"

namespace {

TEST_F(Command, FailsWhereItsOutputFindsNoRoom) {
    Do("draw --sphere 1 -o " + File("a"));
    Do("draw --sphere 2 -o " + File("b"));
    EXPECT_EQ(
        Run("diff " + File("a") + " " + File("b") + " >/dev/full 2>/dev/null || exit $?; true")
            .status,
        2);
}

}  // namespace
