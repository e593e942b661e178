#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <numbers>
#include <optional>

#include "interchange/bvh_file.h"
#include "interchange/gltf_file.h"
#include "interchange/local_motion.h"
#include "interchange/turns.h"
#include "tests/interchange/gltf/read_back.h"
#include "tests/interchange/made_takes.h"
#include "tvl/transform_parts.h"

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
    // The file, read back, of a chain whose poses are changed so. What is meant of the places of
    // the last two joints goes into `meant_`.
    void Write(const std::string& file, const MadePoses::Make& change = {}) {
        meant_.clear();
        MadePoses poses([&](double seconds, World world) {
            PoseChain(seconds, world);
            if (change) change(seconds, world);
            for (const std::size_t joint : {2U, 3U}) {
                const auto [x, y, z, w] = TVL::PartsOf(world[joint]).rotation;
                const double* const at = world[joint][3];
                meant_["joint" + std::to_string(joint)].push_back(
                    {at[0], at[1], at[2], x, y, z, w});
            }
        });
        const auto done = [] { return true; };
        std::ofstream out(folder_.File(file), std::ios::binary);
        if (file.ends_with(".bvh"))
            losses_ = {interchange::WriteBvh(take_, poses, {}, out, done)};
        else
            error_ = interchange::WriteGltf({{&take_, &poses}}, interchange::GltfForm::kBinary, out,
                                            done, losses_);
        out.close();
        if (!error_.empty()) return;
        read_.emplace(folder_.File(file));
        for (auto& [name, samples] : meant_)  // BVH goes through them twice
            samples.resize(take_.frameCount);
        furthest_ = FurthestOff(meant_, read_->SamplesOf(take_.frameCount));
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
    Samples meant_;
    double furthest_ = 0;
};

TEST_F(OddTake, GoesTheShortWayBetweenRotationsAndHasNoKeysForWhatStandsStill) {
    Write("take.glb");
    EXPECT_EQ(Words(), "");
    EXPECT_LT(furthest_, 2e-6);
    const aiScene& scene = read_->Scene();
    const auto channelOf = [&](const char* name) {
        return read_->ChannelOf(*scene.mRootNode->FindNode(name));
    };
    const aiNodeAnim* const channel = channelOf("joint0");
    ASSERT_TRUE(channel);
    for (unsigned key = 1; key < channel->mNumRotationKeys; ++key) {
        const aiQuaternion a = channel->mRotationKeys[key - 1].mValue;
        const aiQuaternion b = channel->mRotationKeys[key].mValue;
        EXPECT_GT(a.w * b.w + a.x * b.x + a.y * b.y + a.z * b.z, 0) << key;
    }
    EXPECT_FALSE(channelOf("joint1"));
    EXPECT_EQ(channelOf("joint2")->mNumPositionKeys, 1U);
}

TEST_F(OddTake, TellsWhatAFileCannotHoldAndKeepsThePlacesBelow) {
    struct Case {
        std::string what;
        CMatrix4 change;   // of the second joint, from 2 seconds on, and twice at 4 seconds
        std::string gltf;  // with which the first line begins, empty for none
        std::string bvh;
        double startSeconds = 0;
        double firstSeconds = 0;  // in a glTF file
    };
    CMatrix4 shear = CMatrix4::Identity();
    shear[1][0] = 0.5;
    const CMatrix4 same = CMatrix4::Identity();
    const std::string from = " of \"joint1\", first at 2.125 s";
    const std::string sheared =
        "the shear" + from + ", most at 4 s (two axes are 45 degrees from at right angles)";
    const std::string begins = "the time at which it begins, ";
    const std::vector<Case> cases = {
        {"scaled", CMatrix4::Diagonal(1, 2.5, 1, 1), "",
         "the scale" + from + ", most at 4 s (6.25 times along its y axis)"},
        {"mirrored", CMatrix4::Diagonal(1, 1, -1, 1), "", "the mirroring" + from},
        {"sheared", shear, sheared, "the scale" + from},
        {"nowhere", At(0, NAN, 0), "the lost place" + from, "the lost place" + from},
        {"flat", CMatrix4::Diagonal(1, 0, 1, 1), "the flatness" + from, "the scale" + from},
        {"early", same, begins + "-2 s: in the file it begins at 0 s", begins + "-2 s", -2},
        {"late", same, begins + "10000000 s", begins, 1e7},
        {"later", same, "", begins + "3 s", 3, 3}};
    std::vector<std::string> files;
    for (const Case& tried : cases) {
        take_.startSeconds = tried.startSeconds;
        for (const bool isBvh : {true, false}) {
            const std::string file = tried.what + (isBvh ? ".bvh" : ".glb");
            SCOPED_TRACE(file);
            Write(file, [&](double seconds, World world) {
                if (seconds > 2) world[1] = tried.change * world[1];
                if (seconds == 4) world[1] = tried.change * world[1];
            });
            const std::string& words = isBvh ? tried.bvh : tried.gltf;
            EXPECT_TRUE(Words().starts_with(words)) << Words();
            EXPECT_EQ(Words().empty(), words.empty()) << Words();
            const double first = isBvh ? 0 : tried.firstSeconds;
            EXPECT_EQ(read_->KeySeconds(0).front(), first);
            EXPECT_NEAR(read_->KeySeconds(0).back(), first + 8, 1e-4);
            const bool isFlat = !isBvh && tried.what == "flat";
            if (tried.what == "late") continue;  // and so far from the origin
            EXPECT_EQ(furthest_ > 1e-5, isFlat) << furthest_;
            EXPECT_EQ(losses_[0].metres > 1e-5, isFlat);
        }
        files.push_back(tried.what + ".glb");
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
              (std::vector<std::string>{"chain", "joint0", "\uFFFD broken", "joint2", "joint3",
                                        "other", "joint0", "joint1", "chain", "joint0"}));
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
    EXPECT_TRUE(Words().starts_with("the lens of \"joint3\" as it is, across its width"))
        << Words();
    EXPECT_NE(Words().find("\nthe motion of the lens of \"joint3\""), std::string::npos) << Words();
    EXPECT_TRUE(losses_[1].words.empty());
    EXPECT_EQ(losses_[2].words, (std::vector<std::string>{"an animation, since nothing moves",
                                                          "the lens of \"joint0\""}));
    if (!HasValidator()) GTEST_SKIP() << kNoValidator;
    EXPECT_EQ(Findings(folder_, {"take.gltf"}), "");
}

// Turns of what is flat, or would be if numbers were finer.
TEST_F(OddTake, HoldsNumbersWhateverItsPosesAre) {
    for (const CMatrix4& odd :
         {CMatrix4::Diagonal(1e-320, 1e200, 1e200, 1), CMatrix4::Diagonal(INFINITY, 1, 1, 1),
          CMatrix4::Diagonal(0, 0, 0, 1), At(1e300, 0, 0)}) {
        interchange::LocalMotion motion(take_, 1 << 20);
        std::vector<CMatrix4> world(4);
        for (const double seconds : {0, 1}) {
            PoseChain(seconds, world);
            motion.Add(world);
        }
        motion.Add(std::vector<CMatrix4>(4, odd));
        for (const interchange::NodeMotion& node : motion.nodes)
            for (const interchange::Channel& channel :
                 {node.translation, node.rotation, node.scale})
                for (const float number : channel.keys)
                    EXPECT_TRUE(std::isfinite(number));
    }
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
