#include "interchange/bvh_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <sstream>

#include "interchange/turns.h"
#include "replay_core/motion/pose.h"
#include "replay_core/motion/read_motion.h"
#include "tests/interchange/made_takes.h"

// Takes of plain data, written and read again.

namespace {

using interchange::NodeKind;
using interchange::TurnAbout;
using TVL::CMatrix4;

constexpr std::size_t kFrames = 200;
constexpr double kFrameSeconds = 0.0137;

// A long chain, whose joints but for the first one make turns that grow from frame to frame.
constexpr std::size_t kJoints = 20;
interchange::Take Arm() {
    return Chain(kJoints, kFrames, kFrameSeconds);
}
MadePoses::Make ArmPose(std::string_view order, const interchange::Turns& first,
                        const interchange::Turns& more) {
    return [=](double seconds, World world) {
        const double frame = std::round(seconds / kFrameSeconds);
        interchange::Turns turns = first;
        for (std::size_t i = 0; i < 3; ++i)
            turns[i] += frame * more[i];
        const interchange::TurnOrder turnOrder(order);
        world[0] = At(frame / 100, 1, 0, TurnAbout(1, 70));
        for (std::size_t i = 1; i < world.size(); ++i)
            world[i] = At(0.3, 0, 0.1, interchange::RotationOf(turnOrder, turns)) * world[i - 1];
    };
}

struct Written {
    std::string text;
    interchange::Loss loss;
    replay::Motion motion;
};

Written WriteAndRead(const interchange::Take& take, const MadePoses::Make& pose,
                     const interchange::BvhChoice& choice) {
    MadePoses poses(pose);
    std::ostringstream out;
    Written written;
    written.loss = WriteBvh(take, poses, choice, out, [] { return true; });
    written.text = out.str();
    std::istringstream in(written.text);
    auto read = replay::ReadMotion(in, "written");
    if (const auto* error = std::get_if<replay::ReadError>(&read))
        ADD_FAILURE() << error->what << " in line " << error->line << '\n' << written.text;
    else
        written.motion = std::get<replay::Motion>(std::move(read));
    return written;
}

// Past the place where outer and inner axis meet, and through it: the middle turn is a quarter at
// one of the frames.
TEST(BvhFile, BringsEachOrderOfTurnsBackAndTurnsRunOnFromFrameToFrame) {
    for (const std::string_view name : interchange::kTurnOrders) {
        for (const double scale : {1.0, 0.01, 39.37}) {
            SCOPED_TRACE(std::string(name) + ' ' + std::to_string(scale));
            const MadePoses::Make pose = ArmPose(name, {0, 0, 30}, {5.1234567, 2, -3.0345679});
            const Written written = WriteAndRead(Arm(), pose, {scale, std::string(name)});
            ASSERT_EQ(written.motion.frameCount, kFrames);
            EXPECT_EQ(written.motion.frameSeconds, kFrameSeconds);
            double furthest = 0;
            for (std::size_t frame = 0; frame < kFrames; ++frame) {
                std::vector<CMatrix4> read(written.motion.joints.size()), meant(kJoints);
                replay::EvaluatePose(written.motion, frame, scale, read);
                pose(double(frame) * kFrameSeconds, meant);
                for (std::size_t i = 0; i < 12 * meant.size(); ++i) {
                    const std::size_t row = i / 3 % 4, column = i % 3;
                    furthest = std::max(furthest, std::abs(read.at(i / 12).rows[row][column] -
                                                           meant[i / 12].rows[row][column]));
                }
            }
            EXPECT_LT(furthest, 8e-7);
            EXPECT_LT(written.loss.metres, 5e-6);
            EXPECT_TRUE(written.loss.words.empty());
            for (const replay::Joint& joint : written.motion.joints)
                EXPECT_EQ(joint.channels.size(), joint.parent == replay::kNoJoint ? 6U : 3U);
            for (std::size_t frame = 1; frame < kFrames; ++frame)
                for (std::size_t turn = 6; turn < written.motion.channelCount; ++turn)
                    ASSERT_LT(std::abs(written.motion.Frame(frame)[turn] -
                                       written.motion.Frame(frame - 1)[turn]),
                              9)
                        << frame;
        }
    }
}

// Cameras and what stands still have no place in it, joints below them hang from the next joint.
TEST(BvhFile, HoldsJointsOfEveryTreeUnderNamesThatOtherProgramsTake) {
    interchange::Take take = Chain(0, 2, 1e-4);
    take.startSeconds = 7;
    const auto add = [&](const char* name, std::size_t parent, NodeKind kind) {
        take.nodes.push_back({.name = name, .parent = parent, .kind = kind});
    };
    add("Ground", interchange::kNoNode, NodeKind::kOther);
    add("Left Hip", 0, NodeKind::kJoint);
    add("Camera", 1, NodeKind::kCamera);
    add("Toe", 2, NodeKind::kJoint);
    add("Left_Hip", 1, NodeKind::kOther);
    add("Ball", interchange::kNoNode, NodeKind::kJoint);
    take.nodes[3].shape = {{.place = {0, 0.1F, 0}}, {.place = {0, -0.2F, 0.3F}}};
    const Written written = WriteAndRead(
        take,
        [](double seconds, World world) {
            const double later = seconds > 7 ? 0.25 : 0;
            std::ranges::copy(std::array{At(0, 0, 0), At(1, 2, 3), At(0, 0, 0),
                                         At(1, 1.5, 3 + later), At(1, 2.5, 3), At(9, 9, 9)},
                              world.begin());
        },
        {.metresPerUnit = 0.5});
    EXPECT_EQ(written.text,
              "HIERARCHY\nROOT Left_Hip\n{\n\tOFFSET 0 0 0\n"
              "\tCHANNELS 6 Xposition Yposition Zposition Zrotation Xrotation Yrotation\n"
              "\tJOINT Toe\n\t{\n\t\tOFFSET 0 -1 0.25\n"
              "\t\tCHANNELS 6 Xposition Yposition Zposition Zrotation Xrotation Yrotation\n"
              "\t\tEnd Site\n\t\t{\n\t\t\tOFFSET 0 -0.4 0.6\n\t\t}\n\t}\n"
              "\tJOINT Left_Hip_2\n\t{\n\t\tOFFSET 0 1 0\n"
              "\t\tCHANNELS 3 Zrotation Xrotation Yrotation\n"
              "\t\tEnd Site\n\t\t{\n\t\t\tOFFSET 0 0.5 0\n\t\t}\n\t}\n}\n"
              "ROOT Ball\n{\n\tOFFSET 0 0 0\n"
              "\tCHANNELS 6 Xposition Yposition Zposition Zrotation Xrotation Yrotation\n"
              "\tEnd Site\n\t{\n\t\tOFFSET 0 0.2 0\n\t}\n}\n"
              "MOTION\nFrames: 2\nFrame Time: 0.0001\n"
              "2 4 6 0 0 0 0 -1 0 0 0 0 0 0 0 18 18 18 0 0 0\n"
              "2 4 6 0 0 0 0 -1 0.5 0 0 0 0 0 0 18 18 18 0 0 0\n");
    EXPECT_EQ(written.loss.words,
              (std::vector<std::string>{
                  "the camera \"Camera\"",
                  "the time at which it begins, 7 s: in the file it begins at 0 s"}));
    EXPECT_EQ(written.loss.metres, 0);
}

TEST(BvhFile, IsGivenUpAtTheFrameAtWhichThatIsWished) {
    MadePoses poses(ArmPose("ZXY", {}, {}));
    for (const std::size_t wished : {std::size_t{1}, kFrames, kFrames + 1}) {
        std::size_t told = 0;
        std::ostringstream out;
        WriteBvh(Arm(), poses, {}, out, [&] { return ++told < wished; });
        EXPECT_EQ(told, wished);
        EXPECT_EQ(out.str().empty(), wished <= kFrames);
    }
}

}  // namespace
