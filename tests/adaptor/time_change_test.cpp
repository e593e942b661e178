#include <gtest/gtest.h>

#include "tests/support/allocations.h"
#include "tests/support/world.h"

namespace {

TEST(TimeChange, WithoutACoreToTellAllocatesNothing) {
    World world({.refuses = true});
    world.Session().SetTime(1);
    const std::size_t before = Allocations();
    for (TimeValue t = 2; t < 100; ++t)
        world.Session().SetTime(t);
    EXPECT_EQ(Allocations(), before);
}

}  // namespace
