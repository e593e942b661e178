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
    const Matrix3 right({1e8F, 0, 0}, {1, 1, 0}, {-1e8F, 0, 1}, {});
    EXPECT_EQ((left * right).m[0][0], 0.0F);
    const Matrix3 thirds({3, 0, 0}, {0, 7, 0}, {0, 0, 1}, {1, 2, 3});
    EXPECT_EQ(Inverse(thirds).m[0][0], 7.0F / 21.0F);
    EXPECT_EQ(Inverse(thirds).m[1][1], 3.0F / 21.0F);
    EXPECT_EQ(Inverse(thirds).m[3][0], -(7.0F / 21.0F));

    Matrix3 matrix = TurnedAboutZ(30);
    matrix.Scale({2, 3, 4});
    matrix.SetRow(3, {10, 20, 30});
    ExpectNear(matrix * Inverse(matrix), Matrix3());
    const float nan = std::numeric_limits<float>::quiet_NaN();
    for (const Matrix3& singular :
         {Matrix3({}, {0, 1, 0}, {0, 0, 1}, {1, 2, 3}), Matrix3({nan, 0, 0}, {0, 1, 0}, {}, {}),
          Matrix3({1e-20F, 0, 0}, {0, 1e-20F, 0}, {0, 0, 1e-20F}, {})})
        EXPECT_EQ(Inverse(singular), Matrix3());
}

TEST(Values, FlagsFollowFromTheNumbersAlone) {
    Matrix3 scaled;
    scaled.Scale({2, 2, 2});
    const Matrix3 mirrored({-1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {});
    EXPECT_EQ(Matrix3().flags, kAllIdentity);
    EXPECT_EQ(MovedBy({0, 0, 1}).flags, kAllIdentity & ~Matrix3::kPositionIdentity);
    EXPECT_EQ(TurnedAboutZ(45).flags, kAllIdentity & ~Matrix3::kRotationIdentity);
    EXPECT_EQ(scaled.flags, kAllIdentity & ~Matrix3::kScaleIdentity);
    EXPECT_EQ(mirrored.flags, kAllIdentity & ~Matrix3::kRotationIdentity);
    Matrix3 lying = MovedBy({1, 2, 3});
    lying.flags = kAllIdentity;
    EXPECT_EQ((lying * lying).GetTrans(), Point3(2, 4, 6));
}

TEST(Values, ScalesReachTheTranslationIfAskedAndBoxesTheirTransformedCorners) {
    Matrix3 matrix({1, 1, 1}, {1, 1, 1}, {1, 1, 1}, {1, 1, 1});
    matrix.Scale({2, 3, 4});
    EXPECT_EQ(matrix.GetRow(0), Point3(2, 3, 4));
    EXPECT_EQ(matrix.GetTrans(), Point3(1, 1, 1));
    matrix.Scale({2, 3, 4}, true);
    EXPECT_EQ(matrix.GetTrans(), Point3(2, 3, 4));
    Box3 box;
    EXPECT_TRUE((box * MovedBy({1, 1, 1})).IsEmpty());
    box += {1, 0, 0};
    EXPECT_FALSE(box.IsEmpty());
    box += {-1, 2, 0};
    const Box3 turned = box * TurnedAboutZ(90);
    ExpectNear(turned.pmin, {-2, -1, 0});
    ExpectNear(turned.pmax, {0, 1, 0});
}

}  // namespace
