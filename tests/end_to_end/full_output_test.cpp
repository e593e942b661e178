#include "platform/testing.h"
#include "tests/end_to_end/command.h"

namespace {

TEST_F(Command, FailsWhereItsOutputFindsNoRoom) {
    Do("draw --sphere 1 -o " + File("a"));
    Do("draw --sphere 2 -o " + File("b"));
    EXPECT_EQ(platform::RunProgram({.program = COMMAND,
                                    .arguments = "diff " + File("a") + " " + File("b"),
                                    .out = "/dev/full",
                                    .error = "/dev/null"}),
              2);
}

}  // namespace
