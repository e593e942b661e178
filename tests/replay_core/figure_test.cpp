#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <numbers>
#include <vector>

#include "replay_core/motion/pose.h"
#include "replay_core/recorder/bones.h"
#include "replay_core/recorder/camera_placement.h"
#include "replay_core/recorder/follow_camera.h"
#include "replay_core/recorder/geometry.h"
#include "tests/replay_core/captures.h"

// How a take looks, and how its camera sees it.

namespace {

using replay::CameraMoment;
using replay::Motion;
using replay::Vector3;

// Six times the volume that the faces enclose, above 0 if they look outward.
double VolumeOf(const TVL::CMesh& mesh) {
    double volume = 0;
    for (std::size_t i = 0; i + 2 < mesh.faces.size(); i += 3) {
        const auto corner = [&](std::size_t k) {
            return mesh.vertices.at(static_cast<std::size_t>(mesh.faces[i + k]));
        };
        volume += replay::Dot(corner(0), replay::Cross(corner(1), corner(2)));
    }
    return volume;
}

TEST(Bones, LeadFromAJointToItsChildrenAndToTheTipOfItsChain) {
    const Motion motion = ReadWhole(kStep);
    const std::vector<TVL::CMesh> bones = replay::BoneMeshes(motion, 10, 100);
    ASSERT_EQ(bones.size(), 2u);
    const Vector3 ends[] = {{10, -20, 5}, {0, -30, 0}};
    for (std::size_t joint = 0; joint < 2; ++joint) {
        ASSERT_EQ(bones[joint].FaceCount(), 8);
        EXPECT_EQ(bones[joint].vertices.front(), (Vector3{0, 0, 0}));
        EXPECT_EQ(bones[joint].vertices.back(), ends[joint]);
        EXPECT_GT(VolumeOf(bones[joint]), 0);
    }
    // A joint that leads nowhere can still be seen and clicked at.
    Motion dot = motion;
    dot.joints[1].offset = dot.endSites[0].offset = {};
    for (const TVL::CMesh& mark : replay::BoneMeshes(dot, 10, 100))
        EXPECT_GT(VolumeOf(mark), 0);
}

// Walks, and in the middle leaps to one side and throws its leg up.
Motion Leap() {
    Motion motion = ReadWhole(kStep);
    motion.frameSeconds = 0.01;
    motion.frameCount = 400;
    motion.values.clear();
    for (int frame = 0; frame < 400; ++frame) {
        const bool leaps = frame >= 200 && frame < 230;
        const std::vector<double> values = {
            frame * 0.1, leaps ? 14.0 : 10.0, leaps ? 6.0 : 0.0, 0, 0, 0, 0,
            0,           leaps ? -150.0 : 0.0};
        motion.values.insert(motion.values.end(), values.begin(), values.end());
    }
    return motion;
}

double AngleOff(const CameraMoment& moment, const Vector3& place) {
    const Vector3 way = replay::Difference(place, replay::PlaceOf(moment.pose));
    const Vector3 back = {moment.pose[2][0], moment.pose[2][1], moment.pose[2][2]};
    return std::acos(-replay::Dot(way, back) / replay::Length(way)) * 180 / std::numbers::pi;
}

TEST(FollowingCamera, KeepsTheWholeFigureInViewWithoutJumping) {
    const Motion motion = Leap();
    replay::MeantPoses poses(motion, 0.1, {});
    const std::vector<CameraMoment> moments = FollowTake(motion, {50, 350}, poses, 39.37);
    ASSERT_EQ(moments.size(), 300u);
    for (std::size_t i = 0; i < moments.size(); ++i) {
        for (const TVL::CMatrix4& joint : poses.At(50 + i))
            ASSERT_LT(AngleOff(moments[i], replay::PlaceOf(joint)),
                      moments[i].fieldOfViewDegrees / 2)
                << "frame " << 50 + i;
        if (i == 0) continue;
        EXPECT_LT(std::abs(moments[i].fieldOfViewDegrees - moments[i - 1].fieldOfViewDegrees), 1);
        const Vector3 step = replay::Difference(replay::PlaceOf(moments[i].pose),
                                                replay::PlaceOf(moments[i - 1].pose));
        EXPECT_LT(replay::Length(step), 0.03) << "frame " << 50 + i;
    }
    EXPECT_NEAR(moments[0].targetDistance / 39.37,
                replay::Length(replay::Difference(replay::PlaceOf(moments[0].pose),
                                                  replay::SurroundOf(poses.At(50)).centre)),
                1e-9);
}

}  // namespace
