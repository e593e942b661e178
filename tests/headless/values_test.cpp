#include <gtest/gtest.h>

#include <limits>

#include "host/box3.h"
#include "tests/support/matrices.h"

namespace {

TEST(Values, ProductsAndInversesAddFromLeftToRightInSinglePrecision) {
    // 1e8 swallows the 1 only if it is added first; the sum of three terms tells the order.
    const Matrix3 left({1, 1, 1}, {0, 1, 0}, {0, 0, 1}, {});
    const Matrix3 right({1e8F, 0, 0}, {1, 1, 0}, {-1e8F, 0, 1}, {});
    EXPECT_EQ((left * right).m[0][0], 0.0F);
    const Matrix3 thirds({3, 0, 0}, {0, 7, 0}, {0, 0, 1}, {1, 2, 3});
    EXPECT_EQ(Inverse(thirds), Matrix3({7.0F / 21.0F, 0, 0}, {0, 3.0F / 21.0F, 0}, {0, 0, 1},
                                       {-(7.0F / 21.0F), 2 * -(3.0F / 21.0F), -3}));
    const float nan = std::numeric_limits<float>::quiet_NaN();
    for (const Matrix3& singular :
         {Matrix3({}, {0, 1, 0}, {0, 0, 1}, {1, 2, 3}), Matrix3({nan, 0, 0}, {0, 1, 0}, {}, {}),
          Matrix3({1e-20F, 0, 0}, {0, 1e-20F, 0}, {0, 0, 1e-20F}, {})})
        EXPECT_EQ(Inverse(singular), Matrix3());
}

TEST(Values, FlagsFollowFromTheNumbersAndScalesReachTheTranslationIfAsked) {
    constexpr std::uint32_t kPosition = Matrix3::kPositionIdentity;
    constexpr std::uint32_t kRotation = Matrix3::kRotationIdentity;
    constexpr std::uint32_t kScale = Matrix3::kScaleIdentity;
    Matrix3 scaled = MovedBy({1, 1, 1});
    scaled.Scale({2, 2, 2}, true);
    EXPECT_EQ(scaled.GetTrans(), Point3(2, 2, 2));
    const Matrix3 mirrored({-1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {});
    EXPECT_EQ(Matrix3().flags, kPosition | kRotation | kScale);
    EXPECT_EQ(MovedBy({0, 0, 1}).flags, kRotation | kScale);
    EXPECT_EQ(TurnedAboutZ(45).flags, kPosition | kScale);
    EXPECT_EQ(mirrored.flags, kPosition | kScale);
    EXPECT_EQ(scaled.flags, kRotation);
}

TEST(Values, ABoxIsEmptyOrTheBoundsOfItsTransformedCorners) {
    Box3 box;
    EXPECT_TRUE((box * MovedBy({1, 1, 1})).IsEmpty());
    box += {1, 0, 0};
    box += {-1, 2, 0};
    const Box3 turned = box * TurnedAboutZ(90);
    ExpectNear(turned.pmin, {-2, -1, 0});
    ExpectNear(turned.pmax, {0, 1, 0});
}

}  // namespace
