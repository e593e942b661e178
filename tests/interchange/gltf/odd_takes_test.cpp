#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <functional>
#include <numbers>
#include <optional>

#include "interchange/gltf_file.h"
#include "interchange/local_motion.h"
#include "tests/interchange/gltf/read_back.h"

using interchange::kNoNode;
using interchange::NodeKind;
using TVL::CMatrix4;

namespace {

class MadePoses final : public interchange::Poses {
  public:
    using Make = std::function<void(double seconds, std::span<CMatrix4> world)>;
    explicit MadePoses(Make make) : make_(std::move(make)) {}
    void At(double seconds, std::span<CMatrix4> world) override { make_(seconds, world); }

  private:
    Make make_;
};

// A turn about Y, by an angle in radians, beside a place.
CMatrix4 Turned(double angle, double x, double y) {
    const double c = std::cos(angle), s = std::sin(angle);
    return {{{c, 0, -s, 0}, {0, 1, 0, 0}, {s, 0, c, 0}, {x, y, 0, 1}}};
}

// A chain of joints, each 0.25 m along X from the one before it. The first turns round and round.
interchange::Take Chain(std::size_t joints) {
    interchange::Take take;
    take.name = "chain";
    take.frameSeconds = 0.125;
    take.frameCount = 65;
    for (std::size_t i = 0; i < joints; ++i)
        take.nodes.push_back({.name = "joint " + std::to_string(i),
                              .parent = i - 1,  // none of the first
                              .kind = NodeKind::kJoint});
    return take;
}

void PoseChain(double seconds, std::span<CMatrix4> world) {
    world[0] = Turned(seconds * 3, seconds / 8, 1);
    for (std::size_t i = 1; i < world.size(); ++i) {
        CMatrix4 beside = Turned(i == 1 ? 0 : std::sin(seconds), 0.25, 0);
        world[i] = beside * world[i - 1];
    }
}

class OddTake : public testing::Test {
  protected:
    // The file, read back, of a chain whose poses are changed so.
    void Write(const MadePoses::Make& change) {
        MadePoses poses([&](double seconds, std::span<CMatrix4> world) {
            PoseChain(seconds, world);
            if (change) change(seconds, world);
            worlds_.emplace_back(world.begin(), world.end());
        });
        std::ofstream out(folder_.File("take.glb"), std::ios::binary);
        error_ = interchange::WriteGltf(
            {{&take_, &poses}}, interchange::GltfForm::kBinary, out, [] { return true; }, losses_);
        out.close();
        if (!error_.empty()) return;
        read_.emplace(folder_.File("take.glb"));
        EXPECT_EQ(Findings(folder_, {"take.glb"}), "");
    }

    // How far a node is from where it was at most, metres.
    double FurthestOf(std::size_t node) const {
        double furthest = 0;
        for (std::size_t frame = 0; frame < worlds_.size(); ++frame)
            for (std::size_t axis = 0; axis < 3; ++axis)
                furthest =
                    std::max(furthest, std::abs(read_->PlaceOf(node, frame)[axis] -
                                                worlds_[frame][node][3][static_cast<int>(axis)]));
        return furthest;
    }

    std::string Words() const {
        std::string words;
        for (const std::string& line : losses_.at(0).words)
            words += line + '\n';
        return words;
    }

    TemporaryFolder folder_;
    interchange::Take take_ = Chain(4);
    std::vector<interchange::Loss> losses_;
    std::string error_;
    std::optional<ReadBack> read_;
    std::vector<std::vector<CMatrix4>> worlds_;
};

TEST_F(OddTake, GoesTheShortWayBetweenRotationsAndHasNoKeysForWhatStandsStill) {
    Write({});
    EXPECT_EQ(Words(), "");
    const aiNodeAnim* const channel = read_->ChannelOf("joint 0");
    ASSERT_TRUE(channel);
    for (unsigned key = 1; key < channel->mNumRotationKeys; ++key) {
        const aiQuaternion a = channel->mRotationKeys[key - 1].mValue;
        const aiQuaternion b = channel->mRotationKeys[key].mValue;
        EXPECT_GT(a.w * b.w + a.x * b.x + a.y * b.y + a.z * b.z, 0) << key;
    }
    EXPECT_FALSE(read_->ChannelOf("joint 1"));
    EXPECT_EQ(read_->ChannelOf("joint 2")->mNumPositionKeys, 1U);
    for (std::size_t node = 0; node < 4; ++node)
        EXPECT_LT(FurthestOf(node), 2e-6) << node;
}

TEST_F(OddTake, TellsWhatItCannotHoldAndKeepsThePlacesBelow) {
    const auto scaleRow = [](CMatrix4& matrix, int row, double by) {
        for (int i = 0; i < 3; ++i)
            matrix[row][i] *= by;
    };
    struct Case {
        const char* what;
        std::function<void(CMatrix4&)> change;
        const char* words;
    };
    const std::vector<Case> cases = {
        {"scaled", [&](CMatrix4& m) { scaleRow(m, 1, 2.5); }, ""},
        {"mirrored", [&](CMatrix4& m) { scaleRow(m, 2, -1); }, ""},
        {"sheared", [](CMatrix4& m) { m[1][0] += m[0][0] / 2; }, "the shear of \"joint 1\""},
        {"nowhere", [](CMatrix4& m) { m[3][1] = std::nan(""); }, "the lost place of \"joint 1\""},
        {"flat", [&](CMatrix4& m) { scaleRow(m, 1, 0); }, "the flatness of \"joint 1\""}};
    for (const Case& tried : cases) {
        SCOPED_TRACE(tried.what);
        worlds_.clear();
        Write([&](double seconds, std::span<CMatrix4> world) {
            if (seconds > 2) tried.change(world[1]);
        });
        EXPECT_TRUE(Words().starts_with(tried.words)) << Words();
        EXPECT_EQ(losses_[0].words.empty(), *tried.words == '\0') << Words();
        const bool isFlat = tried.what == std::string("flat");
        const double furthest = std::max(FurthestOf(2), FurthestOf(3));
        EXPECT_EQ(furthest > 0.01, isFlat) << furthest;
        EXPECT_NEAR(losses_[0].metres, furthest, isFlat ? 0.2 : 1e-5);
    }
}

TEST_F(OddTake, BeginsAtZeroIfItsOwnTimeIsNoneOfGltfs) {
    for (const double start : {-2.0, 1e7}) {
        take_.startSeconds = start;
        Write({});
        EXPECT_TRUE(Words().starts_with("the time at which it begins")) << Words();
        EXPECT_EQ(read_->KeySeconds(0).front(), 0);
        EXPECT_EQ(read_->KeySeconds(0).back(), 8);
    }
    take_.startSeconds = 3;
    Write({});
    EXPECT_EQ(Words(), "");
    EXPECT_EQ(read_->KeySeconds(0).front(), 3);
}

TEST_F(OddTake, HoldsShapesCamerasAndNamesThatAreNoText) {
    take_.nodes[1].name = "\xFF broken";
    using Vertex = interchange::ShapeVertex;
    const auto corner = [](float x, float y) {
        return Vertex{{x, y, 0}, {0, 0, 2}, {0.5F, 2, -1}};
    };
    take_.nodes[2].shape = {corner(0, 0), corner(1, 0), corner(0, 1), corner(1, 0),  corner(1, 1),
                            corner(0, 1), corner(1, 1), corner(1, 1), corner(NAN, 0)};
    take_.nodes[3].kind = NodeKind::kCamera;
    take_.nodes[3].lens = interchange::Lens{.fieldOfView = std::numbers::pi / 2};
    Write({});
    const aiScene& scene = read_->Scene();
    ASSERT_EQ(scene.mNumMeshes, 1U);
    EXPECT_EQ(scene.mMeshes[0]->mNumVertices, 4U);
    EXPECT_EQ(scene.mMeshes[0]->mNumFaces, 2U);
    EXPECT_NEAR(scene.mMeshes[0]->mColors[0][0].r, 0.2140, 1e-4);
    EXPECT_EQ(scene.mMeshes[0]->mColors[0][0].g, 1);
    ASSERT_EQ(scene.mNumCameras, 1U);
    EXPECT_NEAR(scene.mCameras[0]->mAspect, 16.0 / 9, 1e-6);
    EXPECT_EQ(read_->Names()[1], "\uFFFD broken");
    EXPECT_TRUE(Words().starts_with("the lens of \"joint 3\" as it is, across its width"));
}

TEST_F(OddTake, StandsStillWithoutAnAnimation) {
    Write([&](double, std::span<CMatrix4> world) { PoseChain(1, world); });
    EXPECT_EQ(Words(), "an animation, since nothing moves\n");
    EXPECT_EQ(read_->Scene().mNumAnimations, 0U);
    EXPECT_LT(FurthestOf(3), 1e-6);
}

TEST_F(OddTake, StandsBesideAnotherBelowANodeOfItsName) {
    interchange::Take other = Chain(2);
    other.name = "other";
    other.frameCount = 3;
    MadePoses poses(PoseChain);
    std::ofstream out(folder_.File("two.gltf"), std::ios::binary);
    error_ = interchange::WriteGltf(
        {{&take_, &poses}, {&other, &poses}}, interchange::GltfForm::kText, out,
        [] { return true; }, losses_);
    out.close();
    const ReadBack both(folder_.File("two.gltf"));
    EXPECT_EQ(both.Names(), (std::vector<std::string>{"chain", "joint 0", "joint 1", "joint 2",
                                                      "joint 3", "other", "joint 0", "joint 1"}));
    EXPECT_EQ(both.KeySeconds(0).size(), 65U);
    EXPECT_EQ(both.KeySeconds(1).size(), 3U);
    EXPECT_EQ(Findings(folder_, {"two.gltf"}), "");
}

TEST_F(OddTake, IsRefusedWhereItIsLargerThanAFileCanBe) {
    interchange::LocalMotion motion(take_, 65 * 4 * sizeof(float));
    std::vector<CMatrix4> world(4);
    PoseChain(0, world);
    EXPECT_TRUE(motion.Add(world));
    PoseChain(1, world);
    EXPECT_FALSE(motion.Add(world));

    take_.frameCount = std::size_t{1} << 40;
    Write({});
    EXPECT_NE(error_, "");
    EXPECT_EQ(ReadFile(folder_.File("take.glb")), "");
}

}  // namespace
