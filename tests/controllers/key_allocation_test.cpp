#include <gtest/gtest.h>

#include "host/animate.h"
#include "tests/controllers/control_world.h"
#include "tests/support/allocations.h"

namespace {

TEST(KeyAllocation, EvaluationAllocatesNothing) {
    const ControlWorld world;
    Alone<OpenTransform> transform;
    Alone<OpenScalar> scalar;
    for (int i = 0; i < 100; ++i) {
        transform->AddKey({0, i * 10, TurnedAboutZ(i * 7)});
        scalar->AddKey({0, i * 10, static_cast<float>(i)});
    }
    const std::size_t before = Allocations();
    for (TimeValue t = -5; t < 1100; t += 3) {
        MatrixAt(*transform, t, MovedBy(2));
        transform->GetKeyAtTime(t);
        FloatAt(*scalar, t);
    }
    EXPECT_EQ(Allocations(), before);
}

TEST(KeyAllocation, ARecordedSampleAllocatesNothingButTheTablesGrowth) {
    const ControlWorld world;
    Alone<OpenTransform> transform;
    transform->table.keys.Whole().reserve(1000);
    AnimateOn();
    const std::size_t before = Allocations();
    for (TimeValue t = 0; t < 1000; ++t)
        SetWorld(*transform, t, MovedBy(1));
    EXPECT_EQ(Allocations(), before);
    AnimateOff();
}

}  // namespace
