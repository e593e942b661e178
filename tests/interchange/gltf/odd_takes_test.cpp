#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <numbers>
#include <optional>

#include "interchange/gltf_file.h"
#include "interchange/local_motion.h"
#include "interchange/turns.h"
#include "tests/interchange/gltf/read_back.h"
#include "tests/interchange/made_takes.h"

using interchange::Lens;
using interchange::NodeKind;
using interchange::TurnAbout;
using TVL::CMatrix4;

namespace {

// The first joint of the chain turns round and round, the second is fixed to it.
void PoseChain(double seconds, World world) {
    world[0] = At(seconds / 8, 1, 0, TurnAbout(1, 172 * seconds));
    for (std::size_t i = 1; i < world.size(); ++i)
        world[i] = At(0.25, 0, 0, TurnAbout(1, i == 1 ? 0 : 57 * std::sin(seconds))) * world[i - 1];
}

class OddTake : public testing::Test {
  protected:
    // The file, read back, of a chain whose poses are changed so.
    void Write(const std::string& file, const MadePoses::Make& change = {}) {
        worlds_.clear();
        MadePoses poses([&](double seconds, World world) {
            PoseChain(seconds, world);
            if (change) change(seconds, world);
            worlds_.emplace_back(world.begin(), world.end());
        });
        std::ofstream out(folder_.File(file), std::ios::binary);
        error_ = interchange::WriteGltf(
            {{&take_, &poses}}, interchange::GltfForm::kBinary, out, [] { return true; }, losses_);
        out.close();
        if (error_.empty()) read_.emplace(folder_.File(file));
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
    interchange::Take take_ = Chain(4, 65, 0.125);
    std::vector<interchange::Loss> losses_;
    std::string error_;
    std::optional<ReadBack> read_;
    std::vector<std::vector<CMatrix4>> worlds_;
};

TEST_F(OddTake, GoesTheShortWayBetweenRotationsAndHasNoKeysForWhatStandsStill) {
    Write("take.glb");
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
    struct Case {
        std::string what;
        CMatrix4 change;    // of the second joint, from 2 seconds on
        std::string words;  // with which the first line begins, empty for none
        double startSeconds = 0;
        double firstSeconds = 0;  // in the file
    };
    CMatrix4 shear = CMatrix4::Identity();
    shear[1][0] = 0.5;
    const CMatrix4 same = CMatrix4::Identity();
    const std::vector<Case> cases = {
        {"scaled", CMatrix4::Diagonal(1, 2.5, 1, 1), ""},
        {"mirrored", CMatrix4::Diagonal(1, 1, -1, 1), ""},
        {"sheared", shear, "the shear of \"joint 1\""},
        {"nowhere", At(0, NAN, 0), "the lost place of \"joint 1\""},
        {"flat", CMatrix4::Diagonal(1, 0, 1, 1), "the flatness of \"joint 1\""},
        {"early", same, "the time at which it begins, -2 s: in the file it begins at 0 s", -2},
        {"late", same, "the time at which it begins, 10000000 s", 1e7},
        {"later", same, "", 3, 3}};
    std::vector<std::string> files;
    for (const Case& tried : cases) {
        SCOPED_TRACE(tried.what);
        files.push_back(tried.what + ".glb");
        take_.startSeconds = tried.startSeconds;
        Write(files.back(), [&](double seconds, World world) {
            if (seconds > 2) world[1] = tried.change * world[1];
        });
        EXPECT_TRUE(Words().starts_with(tried.words)) << Words();
        EXPECT_EQ(Words().empty(), tried.words.empty()) << Words();
        EXPECT_EQ(read_->KeySeconds(0).front(), tried.firstSeconds);
        EXPECT_EQ(read_->KeySeconds(0).back(), tried.firstSeconds + 8);
        const bool isFlat = tried.what == "flat";
        const bool isFar = tried.what == "late";  // what single precision holds there
        const double furthest = std::max(FurthestOf(2), FurthestOf(3));
        EXPECT_EQ(furthest > 0.01, isFlat || isFar) << furthest;
        EXPECT_NEAR(losses_[0].metres, furthest, isFlat || isFar ? 0.2 : 1e-5);
    }
    if (!HasValidator()) GTEST_SKIP() << kNoValidator;
    EXPECT_EQ(Findings(folder_, files), "");
}

TEST_F(OddTake, HoldsShapesCamerasAndNamesThatAreNoTextOfSeveralTakes) {
    take_.nodes[1].name = "\xFF broken";
    using Vertex = interchange::ShapeVertex;
    const auto corner = [](float x, float y) {
        return Vertex{{x, y, 0}, {0, 0, 2}, {0.5F, 2, -1}};
    };
    take_.nodes[2].shape = {corner(0, 0), corner(1, 0), corner(0, 1), corner(1, 0),  corner(1, 1),
                            corner(0, 1), corner(1, 1), corner(1, 1), corner(NAN, 0)};
    take_.nodes[3].kind = NodeKind::kCamera;
    take_.nodes[3].lens = Lens{.fieldOfView = std::numbers::pi / 2, .moves = true};
    interchange::Take other = Chain(2, 3, 0.125);
    other.name = "other";
    other.nodes[0].lens = Lens{.fieldOfView = 1, .fieldOfViewType = 1};
    interchange::Take still = Chain(1, 65, 0.125);
    still.nodes[0].lens = Lens{.fieldOfView = 4};
    MadePoses poses(PoseChain), stillPoses([](double, World world) { world[0] = At(3, 2, 1); });
    std::ofstream out(folder_.File("take.gltf"), std::ios::binary);
    interchange::WriteGltf(
        {{&take_, &poses}, {&other, &poses}, {&still, &stillPoses}}, interchange::GltfForm::kText,
        out, [] { return true; }, losses_);
    out.close();
    const ReadBack read(folder_.File("take.gltf"));
    EXPECT_EQ(read.Names(),
              (std::vector<std::string>{"chain", "joint 0", "\uFFFD broken", "joint 2", "joint 3",
                                        "other", "joint 0", "joint 1", "chain", "joint 0"}));
    EXPECT_EQ(read.KeySeconds(0).size(), 65U);
    EXPECT_EQ(read.KeySeconds(1).size(), 3U);
    const aiScene& scene = read.Scene();
    EXPECT_EQ(scene.mNumAnimations, 2U);
    ASSERT_EQ(scene.mNumMeshes, 1U);
    EXPECT_EQ(scene.mMeshes[0]->mNumVertices, 4U);
    EXPECT_EQ(scene.mMeshes[0]->mNumFaces, 2U);
    EXPECT_NEAR(scene.mMeshes[0]->mColors[0][0].r, 0.2140, 1e-4);
    EXPECT_EQ(scene.mMeshes[0]->mColors[0][0].g, 1);
    ASSERT_EQ(scene.mNumCameras, 2U);
    EXPECT_NEAR(scene.mCameras[0]->mAspect, 16.0 / 9, 1e-6);
    for (const char* const yfov : {"\"yfov\":1.02477", "\"yfov\":1.0,"})
        EXPECT_NE(ReadFile(folder_.File("take.gltf")).find(yfov), std::string::npos) << yfov;
    EXPECT_TRUE(Words().starts_with("the lens of \"joint 3\" as it is, across its width"))
        << Words();
    EXPECT_NE(Words().find("\nthe motion of the lens of \"joint 3\""), std::string::npos)
        << Words();
    EXPECT_TRUE(losses_[1].words.empty());
    EXPECT_EQ(losses_[2].words, (std::vector<std::string>{"an animation, since nothing moves",
                                                          "the lens of \"joint 0\""}));
    if (!HasValidator()) GTEST_SKIP() << kNoValidator;
    EXPECT_EQ(Findings(folder_, {"take.gltf"}), "");
}

TEST_F(OddTake, IsRefusedWhereItIsLargerThanAFileCanBe) {
    interchange::LocalMotion motion(take_, 65 * 4 * sizeof(float));
    std::vector<CMatrix4> world(4);
    PoseChain(0, world);
    EXPECT_TRUE(motion.Add(world));
    PoseChain(1, world);
    EXPECT_FALSE(motion.Add(world));

    take_.frameCount = std::size_t{1} << 40;
    Write("take.glb");
    EXPECT_NE(error_, "");
    EXPECT_EQ(ReadFile(folder_.File("take.glb")), "");
}

}  // namespace
