#include "replay_core/recorder/helper_look.h"
#include "replay_core/recorder/take_camera.h"
#include "tests/replay_core/captures.h"

// Where a figure's joints are, how it looks, and how its camera sees it.

namespace {

using replay::Motion;
using replay::Vector3;

// One row after the other, from row `first` on.
void ExpectRows(const TVL::CMatrix4& matrix, int first, const std::vector<Vector3>& rows) {
    for (const Vector3& expected : rows) {
        const double* const row = matrix[first++];
        EXPECT_LT(replay::Length(replay::Difference({row[0], row[1], row[2]}, expected)), 1e-12)
            << "row " << first - 1;
    }
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
    ExpectRows(world[0], 3, {{0.1, 1, 0.2}});
    ExpectRows(world[1], 3, {{0.2, 1 - 0.25 * root, 0.2 - 0.15 * root}});
    // The leg turns by -60 degrees about x, then 30 about y, then with the hip: its own x axis goes
    // to (cos 30, 0, -sin 30) of the hip.
    ExpectRows(world[1], 0, {{std::sqrt(3.0) / 2, 0.5 * root, -0.5 * root}});

    EvaluatePose(
        ReadWhole("HIERARCHY ROOT a { OFFSET 1 2 3 CHANNELS 2 Zposition Xposition JOINT b { OFFSET "
                  "4 5 6 CHANNELS 3 Yrotation Zrotation Yrotation } }\nMOTION Frames: 1 Frame "
                  "Time: 1\n30 10 90 90 90\n"),
        0, 1, world);
    ExpectRows(world[0], 3, {{10, 2, 30}});
    ExpectRows(world[1], 0, {{-1, 0, 0}, {0, 0, 1}, {0, 1, 0}, {14, 7, 36}});
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
    std::vector<TVL::CMesh> meshes = replay::BoneMeshes(motion, 10, 100);
    ASSERT_EQ(meshes.size(), 2u);
    EXPECT_EQ(meshes[0].vertices.back(), (Vector3{10, -20, 5}));
    EXPECT_EQ(meshes[1].vertices.back(), (Vector3{0, -30, 0}));
    // One that leads nowhere can still be seen and clicked at.
    motion.joints[1].offset = motion.endSites[0].offset = {};
    for (const TVL::CMesh& mark : replay::BoneMeshes(motion, 10, 100))
        meshes.push_back(mark);
    for (const TVL::CMesh& mesh : meshes)
        EXPECT_GT(VolumeOf(mesh), 0);
}

// It walks, and in the middle leaps to one side and throws its leg up.
TEST(FollowingCamera, KeepsTheWholeFigureInViewWithoutJumping) {
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
    replay::MeantPoses poses(motion, 0.1, {});
    const std::vector<replay::CameraMoment> moments = FollowTake(motion, {50, 350}, poses, 39.37);
    ASSERT_EQ(moments.size(), 300u);
    const auto away = [](const TVL::CMatrix4& camera, const Vector3& place) {
        return replay::Difference(place, replay::PlaceOf(camera));
    };
    for (std::size_t i = 0; i < moments.size(); ++i) {
        const auto& [camera, fieldOfView, distance] = moments[i];
        const Vector3 ahead = {-camera[2][0], -camera[2][1], -camera[2][2]};
        for (const TVL::CMatrix4& joint : poses.At(50 + i)) {
            const Vector3 way = away(camera, replay::PlaceOf(joint));
            const double angle = std::acos(replay::Dot(way, ahead) / replay::Length(way));
            ASSERT_LT(angle * 180 / std::numbers::pi, fieldOfView / 2) << "frame " << 50 + i;
        }
        const replay::CameraMoment& before = moments[std::max<std::size_t>(i, 1) - 1];
        EXPECT_LT(std::abs(fieldOfView - before.fieldOfViewDegrees), 1) << "frame " << 50 + i;
        EXPECT_LT(replay::Length(away(camera, replay::PlaceOf(before.pose))), 0.03);
        const Vector3 centre = replay::SurroundOf(poses.At(50 + i)).centre;
        EXPECT_NEAR(distance / 39.37, replay::Dot(away(camera, centre), ahead), 1e-9);
    }
}

}  // namespace
