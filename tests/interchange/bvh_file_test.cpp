#include "interchange/bvh_file.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

#include "interchange/turns.h"
#include "replay_core/motion/pose.h"
#include "replay_core/motion/read_motion.h"

// Takes of plain data, written and read again.

namespace {

using interchange::NodeKind;
using interchange::TurnAbout;
using TVL::CMatrix4;

constexpr std::size_t kFrames = 200;
constexpr double kFrameSeconds = 0.0137;

using World = std::vector<CMatrix4>;
using Pose = std::function<World(std::size_t frame)>;

// As the host gives it, in single precision.
CMatrix4 Narrowed(CMatrix4 matrix) {
    for (auto& row : matrix.rows)
        for (double& number : row)
            number = static_cast<float>(number);
    return matrix;
}

CMatrix4 At(double x, double y, double z, CMatrix4 matrix = CMatrix4::Identity()) {
    matrix[3][0] = x;
    matrix[3][1] = y;
    matrix[3][2] = z;
    return matrix;
}

class GivenPoses final : public interchange::Poses {
  public:
    explicit GivenPoses(Pose pose) : pose_(std::move(pose)) {}
    void At(double seconds, std::span<CMatrix4> world) override {
        const World given = pose_(static_cast<std::size_t>(std::lround(seconds / kFrameSeconds)));
        for (std::size_t i = 0; i < given.size(); ++i)
            world[i] = Narrowed(given[i]);
    }

  private:
    Pose pose_;
};

interchange::TakeNode Node(const std::string& name, std::size_t parent,
                           NodeKind kind = NodeKind::kJoint) {
    return {.name = name, .handle = 0, .parent = parent, .kind = kind};
}

// A hip, an arm and a hand, one below the other.
interchange::Take Arm() {
    interchange::Take take{
        .name = "arm", .frameSeconds = kFrameSeconds, .frameCount = kFrames, .nodes{}};
    take.nodes = {Node("Hip", interchange::kNoNode), Node("Arm", 0), Node("Hand", 1)};
    return take;
}

// The arm makes these turns.
World ArmPose(const interchange::TurnOrder& order, const interchange::Turns& turns, double along) {
    const CMatrix4 hip = At(along, 1, 0, TurnAbout(1, 70));
    const CMatrix4 arm = At(0.2, 0.4, 0, interchange::RotationOf(order, turns)) * hip;
    return {hip, arm, At(0.3, 0, 0.1) * arm};
}

struct Written {
    std::string text;
    interchange::Loss loss;
    replay::Motion motion;
};

Written WriteAndRead(const interchange::Take& take, const Pose& pose,
                     const interchange::BvhChoice& choice) {
    GivenPoses poses(pose);
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

// Joint for joint in the order of the take, with `rows` of each matrix from `first` on.
void ExpectSame(const Written& written, const Pose& pose, double metresPerUnit, int first,
                double tolerance) {
    ASSERT_EQ(written.motion.frameCount, kFrames);
    EXPECT_EQ(written.motion.frameSeconds, kFrameSeconds);
    World read(written.motion.joints.size());
    double furthest = 0;
    for (std::size_t frame = 0; frame < kFrames; ++frame) {
        replay::EvaluatePose(written.motion, frame, metresPerUnit, read);
        const World meant = pose(frame);
        ASSERT_EQ(read.size(), meant.size());
        for (std::size_t i = 0; i < meant.size(); ++i)
            for (int row = first; row < 4; ++row)
                for (int column = 0; column < 3; ++column)
                    furthest =
                        std::max(furthest, std::abs(read[i][row][column] - meant[i][row][column]));
    }
    EXPECT_LT(furthest, tolerance);
}

// Past the place where outer and inner axis meet, and through it: the middle turn is a quarter at
// one of the frames.
TEST(BvhFile, BringsEachOrderOfTurnsBackAndTurnsRunOnFromFrameToFrame) {
    for (const std::string_view name : interchange::kTurnOrders) {
        for (const double scale : {1.0, 0.01, 39.37}) {
            SCOPED_TRACE(std::string(name) + ' ' + std::to_string(scale));
            const interchange::TurnOrder order(name);
            const Pose pose = [&](std::size_t frame) {
                const double f = static_cast<double>(frame);
                return ArmPose(order, {5 * f, 2 * f, 30 - 3 * f}, f / 100);
            };
            const Written written = WriteAndRead(Arm(), pose, {scale, std::string(name)});
            ExpectSame(written, pose, scale, 0, 5e-6);
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

struct Deformed {
    CMatrix4 by;  // the arm, ahead of its turns, from frame 50 on and twice as much in frame 60
    CMatrix4 most;
    std::string words;
};

TEST(BvhFile, TellsWhatItDoesNotHoldAndKeepsThePlacesOfJoints) {
    CMatrix4 shear = CMatrix4::Identity();
    shear[0][1] = 0.5;
    CMatrix4 moreShear = shear;
    moreShear[0][1] = 1;
    const std::string from = " of \"Arm\", first at 0.685 s";
    const Deformed kDeformed[] = {
        {CMatrix4::Diagonal(1, 2, 1, 1), CMatrix4::Diagonal(1, 4, 1, 1),
         "the scale" + from + ", most at 0.822 s (4 times along its y axis)"},
        {shear, moreShear, "the shear" + from + ", most at 0.822 s (two axes are 45 degrees "},
        {CMatrix4::Diagonal(1, 1, -1, 1), CMatrix4::Diagonal(-1, 1, 1, 1), "the mirroring" + from},
        {CMatrix4::Diagonal(0, 0, 0, 1), CMatrix4::Diagonal(0, 0, 0, 1), "the scale" + from},
        {CMatrix4::Diagonal(NAN, 1, 1, 1), CMatrix4::Diagonal(NAN, 1, 1, 1),
         "the lost place" + from}};
    for (const Deformed& deformed : kDeformed) {
        SCOPED_TRACE(deformed.words);
        const Pose meant = [](std::size_t frame) {
            const double f = static_cast<double>(frame);
            return ArmPose(interchange::TurnOrder("ZXY"), {f, 20, 0}, f / 100);
        };
        const Pose given = [&](std::size_t frame) {
            World world = meant(frame);
            if (frame >= 50) world[1] = (frame == 60 ? deformed.most : deformed.by) * world[1];
            return world;
        };
        const Written written = WriteAndRead(Arm(), given, {});
        if (std::isfinite(deformed.by[0][0])) ExpectSame(written, meant, 1, 3, 1e-5);
        EXPECT_EQ(written.motion.values.size(), kFrames * written.motion.channelCount);
        bool isTold = false;
        for (const std::string& line : written.loss.words)
            isTold = isTold || line.starts_with(deformed.words);
        EXPECT_TRUE(isTold) << testing::PrintToString(written.loss.words);
    }
}

// Cameras and what stands still have no place in it, joints below them hang from the next joint.
TEST(BvhFile, HoldsJointsOfEveryTreeUnderNamesThatOtherProgramsTake) {
    interchange::Take take = Arm();
    take.frameCount = 2;
    take.nodes = {Node("Ground", interchange::kNoNode, NodeKind::kOther),
                  Node("Left Hip", 0),
                  Node("Camera", 1, NodeKind::kCamera),
                  Node("Toe", 2),
                  Node("Left_Hip", 1, NodeKind::kOther),
                  Node("Ball", interchange::kNoNode)};
    take.nodes[3].shape = {{.place = {0, 0.1F, 0}}, {.place = {0, -0.2F, 0.3F}}};
    const Written written =
        WriteAndRead(take,
                     [](std::size_t frame) {
                         return World{At(0, 0, 0),   At(1, 2, 3),
                                      At(0, 0, 0),   At(1, 1.5, 3 + 0.25 * double(frame)),
                                      At(1, 2.5, 3), At(9, 9, 9)};
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
              "MOTION\nFrames: 2\nFrame Time: 0.0137\n"
              "2 4 6 0 0 0 0 -1 0 0 0 0 0 0 0 18 18 18 0 0 0\n"
              "2 4 6 0 0 0 0 -1 0.5 0 0 0 0 0 0 18 18 18 0 0 0\n");
    EXPECT_EQ(written.loss.words, std::vector<std::string>{"the camera \"Camera\""});
    EXPECT_EQ(written.loss.metres, 0);
}

TEST(BvhFile, IsGivenUpAtTheFrameAtWhichThatIsWished) {
    GivenPoses poses([](std::size_t) { return ArmPose(interchange::TurnOrder("ZXY"), {}, 0); });
    for (const std::size_t wished : {std::size_t{1}, kFrames, kFrames + 1}) {
        std::size_t told = 0;
        std::ostringstream out;
        WriteBvh(Arm(), poses, {}, out, [&] { return ++told < wished; });
        EXPECT_EQ(told, wished);
        EXPECT_EQ(out.str().empty(), wished <= kFrames);
    }
}

}  // namespace
