#include "replay_core/motion/body_part.h"

#include <gtest/gtest.h>

namespace {

using replay::BodySide;

TEST(BodyPart, IsReadFromTheWaysInWhichCapturesNameTheirJoints) {
    for (const char* left : {"LeftArm", "Left Leg", "LHipJoint", "l_foot", "lShldr", "Toe.L",
                             "hand_l", "rig:LeftFoot", "rig:L_Wrist", "LEFTHAND"})
        EXPECT_EQ(replay::SideOf(left), BodySide::kLeft) << left;
    for (const char* right : {"RightArm", "RThumb", "r.foot", "rCollar", "Knee-R", "upper_right"})
        EXPECT_EQ(replay::SideOf(right), BodySide::kRight) << right;
    for (const char* middle : {"", "L", "R:", "Hips", "LowerBack", "Root", "ROOT", "LEG", "Ribs",
                               "L5", "T12", "rig:Head", "Pelvis", "Spine_1"})
        EXPECT_EQ(replay::SideOf(middle), BodySide::kMiddle) << middle;

    for (const char* foot : {"LeftFoot", "RIGHT_TOE", "rig:l_ankle", "Heel.R"})
        EXPECT_TRUE(replay::IsFoot(foot)) << foot;
    EXPECT_FALSE(replay::IsFoot("LeftLeg"));
}

}  // namespace
