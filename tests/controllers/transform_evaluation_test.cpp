// Poses between keys to the last bit. The expected numbers were worked out by a program of its own,
// step by step in the defined order and precision.

#include <gtest/gtest.h>

#include "tests/controllers/control_world.h"

namespace {

const Matrix3 kLeft({0.8f, 0.6f, 0}, {-1.2f, 1.6f, 0}, {0, 0, 0.5f}, {1.25f, -30, 400});
const Matrix3 kRight({-0.3f, 0.1f, 0.9f}, {0.2f, -0.7f, 0.4f}, {1.1f, 0.6f, 0.2f},
                     {-7.7f, 0.3f, 12.1f});

struct Pose {
    TimeValue t;
    Matrix3 matrix;
};
const Pose kPoses[] = {{-90, Matrix3({0x1.80dbfap-1f, 0x1.5056ap-1f, -0x1.17b862p-7f},
                                     {-0x1.48bacap+0f, 0x1.78977ep+0f, 0x1.0e25fp-3f},
                                     {0x1.b76baep-6f, -0x1.869e04p-6f, 0x1.0dcf26p-1f},
                                     {0x1.d7fa8ap-1f, -0x1.ce3958p+4f, 0x1.81c6eap+8f})},
                       {20, Matrix3({0x1.09fc58p-3f, 0x1.ea5394p-1f, 0x1.5dea06p-3f},
                                    {-0x1.2c58f2p+0f, -0x1.ffda08p-7f, 0x1.f57184p-1f},
                                    {0x1.0417f4p-1f, -0x1.6a694p-3f, 0x1.362116p-1f},
                                    {-0x1.2e0f04p+1f, -0x1.1c76c8p+4f, 0x1.e7181p+7f})},
                       {165, Matrix3({-0x1.56c476p-2f, 0x1.e79888p-2f, 0x1.86550ap-1f},
                                     {0x1.463696p-3f, -0x1.8b9dbap-1f, 0x1.1ae7eap-1f},
                                     {0x1.170d1ep+0f, 0x1.915142p-2f, 0x1.dede78p-3f},
                                     {-0x1.abe1f6p+2f, -0x1.9126ecp+1f, 0x1.c07efcp+5f})}};

class TransformEvaluation : public testing::Test {
  protected:
    TransformEvaluation() {
        control_->AddKey({0, -101, kLeft});
        control_->AddKey({0, 199, kRight});
    }

    ControlWorld world_;
    Alone<OpenTransform> control_;
};

TEST_F(TransformEvaluation, APoseBetweenKeysHasTheDefinedBits) {
    for (const Pose& pose : kPoses) {
        EXPECT_EQ(control_->GetKeyAtTime(pose.t).value, pose.matrix) << pose.t;
        EXPECT_EQ(MatrixAt(*control_, pose.t), pose.matrix) << "under the identity, " << pose.t;
    }
}

// A recorded take is played under whatever the parent does meanwhile.
TEST_F(TransformEvaluation, UnderAParentTheKeysAreMultipliedFirstAndTheResultIsBroughtBack) {
    const Matrix3 parent({0, 2, 0}, {-1, 0, 0.5f}, {0, 0, 1}, {3, -4, 5});
    for (const Pose& pose : kPoses) {
        Alone<OpenTransform> inWorld;
        inWorld->AddKey({0, -101, kLeft * parent});
        inWorld->AddKey({0, 199, kRight * parent});
        EXPECT_EQ(MatrixAt(*control_, pose.t, parent),
                  inWorld->GetKeyAtTime(pose.t).value * Inverse(parent));
    }
}

}  // namespace
