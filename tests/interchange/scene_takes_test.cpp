#include "interchange/scene_takes.h"

#include <cmath>

#include "headless/primitives.h"
#include "host/node.h"
#include "tests/headless/host_world.h"

// Takes as they are read from the host's scene, with keys of the host's own controllers.

namespace {

class SceneTakes : public HostWorld {
  protected:
    // Keys for places along x, in the host's units, at these ticks.
    void Move(INode* node, const Times& ticks) {
        AnimateOn();
        for (const TimeValue t : ticks)
            Place(node, Point3(static_cast<float>(t), 0, 10), t);
        SuspendAnimate();
    }

    static double XInUnits(interchange::ScenePoses& poses, double seconds, std::size_t node = 0) {
        std::vector<TVL::CMatrix4> world(8);
        poses.At(seconds, world);
        return world[node][3][0] * 39.37;
    }
};

replay::TakeReport Told(const std::string& name, const std::vector<std::string>& hostNames) {
    replay::TakeReport told{
        .name = name, .parent{}, .recordings{{"a.bvh", 1, 0.5, 2, 5, 1}}, .nodes{}, .missing{}};
    for (const std::string& hostName : hostNames)
        told.nodes.push_back({hostName.substr(1), hostName});
    return told;
}

// A second has 4,800 ticks.
TEST_F(SceneTakes, WithoutACoreEachTreeWithKeysIsOneInTheFramesOfItsKeys) {
    INode* const still = Add("Still");
    Move(still, {0});
    INode* const even = Add("Hips");
    Times truncated;  // each 65.76 ticks, as of frames of 0.0137 seconds
    for (int frame = 0; frame < 60; ++frame)
        truncated.push_back(100 + static_cast<TimeValue>(65.76 * frame));
    Move(even, truncated);
    Move(Add("Knee", even), {100});
    INode* const uneven = Add("Hips");
    Move(uneven, {0, 10, 4800});
    Move(Add("Posed by hand"), {0, 2400, 4800});

    const std::vector<interchange::Take> takes = interchange::TakesOf({});
    ASSERT_EQ(takes.size(), 3U);
    EXPECT_EQ(takes[0].name + ' ' + takes[1].name, "Hips Hips_2");
    EXPECT_EQ(takes[0].nodes.size(), 2U);
    EXPECT_EQ(takes[0].nodes[1].parent, 0U);
    EXPECT_EQ(takes[0].frameCount, 60U);
    interchange::ScenePoses poses(takes[0]);
    for (std::size_t frame = 0; frame < 60; ++frame)
        EXPECT_NEAR(XInUnits(poses, takes[0].Seconds(frame)), truncated[frame], 1e-3) << frame;
    EXPECT_NEAR(XInUnits(poses, 0.5), 2400, 1e-3);  // no frame of the take: at its own tick

    for (const interchange::Take& inScenesFrames : {takes[1], takes[2]}) {
        EXPECT_EQ(inScenesFrames.frameCount, 31U);
        EXPECT_DOUBLE_EQ(inScenesFrames.frameSeconds, 1.0 / 30);
        EXPECT_EQ(inScenesFrames.EndSeconds(), 1);
    }
    const interchange::Take slow = takes[1].Resampled(0.4, false);
    EXPECT_EQ(slow.frameCount, 3U);
    EXPECT_DOUBLE_EQ(slow.EndSeconds(), 0.8);
    const interchange::Take whole = takes[1].Resampled(0.4, true);
    EXPECT_EQ(whole.frameCount, 4U);
    EXPECT_DOUBLE_EQ(whole.Seconds(2), 0.8);
    EXPECT_EQ(whole.EndSeconds(), 1);
    for (const bool keepsEnd : {false, true})
        EXPECT_EQ(takes[1].Resampled(1.0 / 93, keepsEnd).frameCount, 94U);
}

TEST_F(SceneTakes, OfACoreHaveTheSpanOfTheirRecordingsAndNodesOfTheirOwnTrees) {
    // Two trees of the same names; a take is told parents first.
    for (int tree = 0; tree < 2; ++tree) {
        INode* const hip = Add("_Hip");
        Move(Add("_Knee", hip), {0, 4800});
        if (tree == 1) Move(hip, {0, 4800});
    }
    std::vector<replay::TakeReport> told = {Told("one", {"_Hip", "_Knee", "_Gone"}),
                                            Told("two", {"_Hip", "_Knee"}), Told("gone", {"x"})};
    told[1].recordings = {{"b.bvh", 1, 0.1, 0, 11, 0}, {"b.bvh", 1, 0.25, 1, 3, 2}};
    const std::vector<interchange::Take> takes = interchange::TakesOf(told);
    ASSERT_EQ(takes.size(), 2U);
    for (const interchange::Take& take : takes) {
        ASSERT_EQ(take.nodes.size(), 2U);
        EXPECT_EQ(take.nodes[0].name + take.nodes[1].name, "HipKnee");
        EXPECT_EQ(take.nodes[1].parent, 0U);
    }
    EXPECT_EQ(takes[0].startSeconds, 2);
    EXPECT_EQ(takes[0].frameCount, 3U);
    EXPECT_EQ(takes[0].nodes[0].kind, interchange::NodeKind::kOther);
    EXPECT_EQ(takes[1].nodes[0].kind, interchange::NodeKind::kJoint);
    EXPECT_EQ(takes[1].startSeconds, 0);
    EXPECT_EQ(takes[1].frameSeconds, 0.25);
    EXPECT_EQ(takes[1].EndSeconds(), 2.5);

    // The knee of the second tree, though the first one's is free.
    EXPECT_EQ(interchange::TakesOf({Told("one", {"_Hip"}), told[1]}).back().nodes[1].parent, 0U);

    // A scene file can say anything.
    told[0].recordings = {{"a.bvh", 1, NAN, 0, 0, INFINITY}, {"a.bvh", 1, -1, 5, 2, -1e300}};
    const interchange::Take odd = interchange::TakesOf(told).front();
    EXPECT_DOUBLE_EQ(odd.frameSeconds, 1.0 / 30);
    EXPECT_TRUE(std::isfinite(odd.EndSeconds()));
}

TEST_F(SceneTakes, ShowNodesInTheirOwnSpaceInMetresHoweverTheyStand) {
    Matrix3 world = TurnedAboutZ(30);
    world.SetRow(0, world.GetRow(0) * -3);
    world.SetRow(3, Point3(500, 40, 10));
    for (const bool hidden : {false, true}) {
        INode* const ball = host.CreateObjectNode(headless::NewSphere(39.37F, 12));
        Move(ball, {0, 160});
        AnimateOn();
        ball->SetNodeTM(0, world);
        SuspendAnimate();
        ball->Hide(hidden);
        host.SelectNode(ball, 0);
    }
    const std::vector<interchange::Take> takes = interchange::TakesOf({});
    ASSERT_EQ(takes.size(), 2U);
    EXPECT_TRUE(takes[1].nodes[0].shape.empty());
    ASSERT_GT(takes[0].nodes[0].shape.size(), 100U);
    for (const interchange::ShapeVertex& vertex : takes[0].nodes[0].shape) {
        const auto& [x, y, z] = vertex.place;
        EXPECT_NEAR(std::hypot(x, y, z), 1, 1e-4);
        const auto& [nx, ny, nz] = vertex.normal;
        EXPECT_NEAR(std::hypot(nx, ny, nz), 1, 1e-5);
        EXPECT_GT(std::abs(x * nx + y * ny + z * nz), 0.9);
    }
    interchange::ScenePoses poses(takes[0]);
    std::vector<TVL::CMatrix4> at(1);
    poses.At(0, at);
    EXPECT_NEAR(at[0][3][1], 10 / 39.37, 1e-6);
    EXPECT_NEAR(at[0][3][2], -40 / 39.37, 1e-6);
    EXPECT_NEAR(std::hypot(at[0][0][0], at[0][0][1], at[0][0][2]), 3, 1e-5);
    EXPECT_NEAR(std::hypot(at[0][1][0], at[0][1][1], at[0][1][2]), 1, 1e-5);
}

}  // namespace
