#include <gtest/gtest.h>

#include <limits>

#include "host/box3.h"
#include "tests/support/matrices.h"

namespace {

constexpr std::uint32_t kAllIdentity =
    Matrix3::kPositionIdentity | Matrix3::kRotationIdentity | Matrix3::kScaleIdentity;

TEST(Values, ProductsAndInversesAddFromLeftToRightInSinglePrecision) {
    // 1e8 swallows the 1 only if it is added first; the sum of three terms tells the order.
    const Matrix3 left({1, 1, 1}, {0, 1, 0}, {0, 0, 1}, {});
    const Matrix3 right({1e8f, 0, 0}, {1, 1, 0}, {-1e8f, 0, 1}, {});
    EXPECT_EQ((left * right).m[0][0], 0.0f);

    const Matrix3 thirds({3, 0, 0}, {0, 7, 0}, {0, 0, 1}, {1, 2, 3});
    EXPECT_EQ(Inverse(thirds).m[0][0], 7.0f / 21.0f);
    EXPECT_EQ(Inverse(thirds).m[1][1], 3.0f / 21.0f);
    EXPECT_EQ(Inverse(thirds).m[3][0], -(7.0f / 21.0f));
}

TEST(Values, AnInverseUndoesAndASingularMatrixBecomesTheIdentity) {
    Matrix3 matrix = TurnedAboutZ(30);
    matrix.Scale({2, 3, 4});
    matrix.SetRow(3, {10, 20, 30});
    ExpectNear((matrix * Inverse(matrix)).GetTrans(), {});
    ExpectNear((matrix * Inverse(matrix)).GetRow(1), {0, 1, 0});

    const Matrix3 identity;
    EXPECT_EQ(Inverse(Matrix3({}, {0, 1, 0}, {0, 0, 1}, {1, 2, 3})), identity);
    EXPECT_EQ(Inverse(Matrix3({1e-20f, 0, 0}, {0, 1e-20f, 0}, {0, 0, 1e-20f}, {})), identity);
    const float nan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(Inverse(Matrix3({nan, 0, 0}, {0, 1, 0}, {0, 0, 1}, {})), identity);
}

TEST(Values, FlagsFollowFromTheNumbersAlone) {
    EXPECT_EQ(Matrix3().flags, kAllIdentity);
    EXPECT_EQ(MovedBy({0, 0, 1}).flags, kAllIdentity & ~Matrix3::kPositionIdentity);
    EXPECT_EQ(TurnedAboutZ(45).flags, kAllIdentity & ~Matrix3::kRotationIdentity);
    Matrix3 scaled;
    scaled.Scale({2, 2, 2});
    EXPECT_EQ(scaled.flags, kAllIdentity & ~Matrix3::kScaleIdentity);
    const Matrix3 mirrored({-1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {});
    EXPECT_EQ(mirrored.flags, kAllIdentity & ~Matrix3::kRotationIdentity);

    Matrix3 lying = MovedBy({1, 2, 3});
    lying.flags = kAllIdentity;
    EXPECT_EQ((lying * lying).GetTrans(), Point3(2, 4, 6));
    EXPECT_EQ(lying, MovedBy({1, 2, 3}));
}

TEST(Values, ScalingOnTheRightScalesColumnsAndTheTranslationOnlyIfAsked) {
    Matrix3 matrix({1, 1, 1}, {1, 1, 1}, {1, 1, 1}, {1, 1, 1});
    matrix.Scale({2, 3, 4});
    EXPECT_EQ(matrix.GetRow(0), Point3(2, 3, 4));
    EXPECT_EQ(matrix.GetTrans(), Point3(1, 1, 1));
    matrix.Scale({2, 3, 4}, true);
    EXPECT_EQ(matrix.GetTrans(), Point3(2, 3, 4));
}

TEST(Values, ABoxIsEmptyUntilItHoldsAPointAndStaysAroundItsTransformedCorners) {
    Box3 box;
    EXPECT_TRUE(box.IsEmpty());
    EXPECT_TRUE((box * MovedBy({1, 1, 1})).IsEmpty());
    box += {1, 0, 0};
    EXPECT_FALSE(box.IsEmpty());
    box += {-1, 2, 0};
    const Box3 turned = box * TurnedAboutZ(90);
    ExpectNear(turned.pmin, {-2, -1, 0});
    ExpectNear(turned.pmax, {0, 1, 0});
}

}  // namespace
