#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <vector>

#include "replay_core/motion/pose.h"
#include "replay_core/recorder/geometry.h"
#include "replay_core/recorder/helper_look.h"
#include "replay_core/recorder/take_camera.h"
#include "tests/replay_core/captures.h"
#include "tests/support/allocations.h"

// Where a figure's joints are, how it looks, and how its camera sees it.

namespace {

using replay::CameraMoment;
using replay::Motion;
using replay::Vector3;

void ExpectRow(const TVL::CMatrix4& matrix, int row, const Vector3& expected) {
    for (int axis = 0; axis < 3; ++axis)
        EXPECT_NEAR(matrix[row][axis], expected[static_cast<std::size_t>(axis)], 1e-12)
            << "row " << row << ", column " << axis;
}

// The hip stands at (1, 10, 2) and bows by 45 degrees about x; the leg hangs at (1, -2, 0.5) of it.
// Then turns about axes that have turned already, and positions in place of some of an OFFSET's.
TEST(EvaluatePose, CarriesJointsAlongInMetresAndTakesChannelsInTheOrderOfTheFile) {
    const Motion motion = ReadWhole(kStep);
    std::vector<TVL::CMatrix4> world(2);
    const std::size_t before = Allocations();
    EvaluatePose(motion, 1, 0.1, world);
    EXPECT_EQ(Allocations(), before);
    const double root = std::numbers::sqrt2 / 2;
    ExpectRow(world[0], 3, {0.1, 1, 0.2});
    ExpectRow(world[1], 3, {0.2, 1 - 0.25 * root, 0.2 - 0.15 * root});
    // The leg turns by -60 degrees about x, then 30 about y, then with the hip: its own x axis goes
    // to (cos 30, 0, -sin 30) of the hip.
    ExpectRow(world[1], 0, {std::sqrt(3.0) / 2, 0.5 * root, -0.5 * root});

    EvaluatePose(
        ReadWhole("HIERARCHY ROOT a { OFFSET 1 2 3 CHANNELS 2 Zposition Xposition JOINT b { OFFSET "
                  "4 5 6 CHANNELS 3 Yrotation Zrotation Yrotation } }\nMOTION Frames: 1 Frame "
                  "Time: 1\n30 10 90 90 90\n"),
        0, 1, world);
    ExpectRow(world[0], 3, {10, 2, 30});
    ExpectRow(world[1], 3, {14, 7, 36});
    ExpectRow(world[1], 0, {-1, 0, 0});
    ExpectRow(world[1], 1, {0, 0, 1});
    ExpectRow(world[1], 2, {0, 1, 0});
}

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
    Motion motion = ReadWhole(kStep);
    const std::vector<TVL::CMesh> bones = replay::BoneMeshes(motion, 10, 100);
    ASSERT_EQ(bones.size(), 2u);
    const Vector3 ends[] = {{10, -20, 5}, {0, -30, 0}};
    for (std::size_t joint = 0; joint < 2; ++joint) {
        EXPECT_EQ(bones[joint].FaceCount(), 8);
        EXPECT_EQ(bones[joint].vertices.back(), ends[joint]);
        EXPECT_GT(VolumeOf(bones[joint]), 0);
    }
    // One that leads nowhere can still be seen and clicked at.
    motion.joints[1].offset = motion.endSites[0].offset = {};
    for (const TVL::CMesh& mark : replay::BoneMeshes(motion, 10, 100))
        EXPECT_GT(VolumeOf(mark), 0);
}

// Walks, and in the middle leaps to one side and throws its leg up.
Motion Leap() {
    Motion motion = ReadWhole(kStep);
    motion.frameSeconds = 0.01;
    motion.frameCount = 400;
    motion.values.clear();
    for (int frame = 0; frame < 400; ++frame) {
        const double leap = frame >= 200 && frame < 230;
        for (const double value :
             {frame * 0.1, 10 + 4 * leap, 6 * leap, 0.0, 0.0, 0.0, 0.0, 0.0, -150 * leap})
            motion.values.push_back(value);
    }
    return motion;
}

TEST(FollowingCamera, KeepsTheWholeFigureInViewWithoutJumping) {
    const Motion motion = Leap();
    replay::MeantPoses poses(motion, 0.1, {});
    const std::vector<CameraMoment> moments = FollowTake(motion, {50, 350}, poses, 39.37);
    ASSERT_EQ(moments.size(), 300u);
    Vector3 before = replay::PlaceOf(moments[0].pose);
    for (std::size_t i = 0; i < moments.size(); ++i) {
        const TVL::CMatrix4& camera = moments[i].pose;
        const Vector3 ahead = {-camera[2][0], -camera[2][1], -camera[2][2]};
        for (const TVL::CMatrix4& joint : poses.At(50 + i)) {
            const Vector3 way = replay::Difference(replay::PlaceOf(joint), replay::PlaceOf(camera));
            const double angle =
                std::acos(replay::Dot(way, ahead) / replay::Length(way)) * 180 / std::numbers::pi;
            ASSERT_LT(angle, moments[i].fieldOfViewDegrees / 2) << "frame " << 50 + i;
        }
        EXPECT_LT(std::abs(moments[i].fieldOfViewDegrees -
                           moments[i - std::min<std::size_t>(i, 1)].fieldOfViewDegrees),
                  1);
        EXPECT_LT(replay::Length(replay::Difference(replay::PlaceOf(camera), before)), 0.03)
            << "frame " << 50 + i;
        before = replay::PlaceOf(camera);
    }
    const Vector3 middle = replay::SurroundOf(poses.At(50)).centre;
    EXPECT_NEAR(moments[0].targetDistance / 39.37,
                replay::Length(replay::Difference(replay::PlaceOf(moments[0].pose), middle)), 1e-9);
}

}  // namespace
