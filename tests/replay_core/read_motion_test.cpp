#include "replay_core/motion/read_motion.h"

#include <gtest/gtest.h>

#include <locale>
#include <regex>
#include <utility>

#include "replay_core/motion/body_part.h"
#include "replay_core/motion/motion.h"
#include "tests/replay_core/captures.h"

namespace {

using replay::Motion;

TEST(ReadMotion, GivesJointsChannelsAndFramesAsTheyStand) {
    EXPECT_EQ(Told(ReadWhole(kStep)),
              "Hip below none (0 7 0) 0:012534; Left Leg below Hip (1 -2 0.5) 6:543; "
              "end of Left Leg (0 -3 0); 2 of 9 each 0.25 "
              "0 10 0 0 0 0 90 0 0 1 10 2 0 45 0 0 30 -60");
    // Channels in any order, on any joint or on none, and several roots.
    EXPECT_EQ(
        Told(ReadWhole("HIERARCHY ROOT a { OFFSET 0 0 0 JOINT b { OFFSET 1 0 0 CHANNELS 0 } }\n"
                       "ROOT c { CHANNELS 1 Xrotation OFFSET 0 0 0 JOINT d { OFFSET 0 0 0\n"
                       "CHANNELS 4 Yrotation Zposition yrotation Xposition } }\n"
                       "MOTION Frames: 1 Frame Time: 1\n5 1 2 3 4\n")),
        "a below none (0 0 0) 0:; b below a (1 0 0) 0:; c below none (0 0 0) 0:3; "
        "d below c (0 0 0) 1:4240; 1 of 5 each 1 5 1 2 3 4");
}

TEST(ReadMotion, TakesEveryUsualLayoutForTheSame) {
    const std::string step(kStep);
    const auto everywhere = [&](const char* pattern, const char* by) {
        return std::regex_replace(step, std::regex(pattern), by);
    };
    const std::string layouts[] = {
        everywhere("\n", "\r\n"),
        everywhere("\n", "\n\n \t\n"),
        everywhere(" (?!Leg)", " \t  "),
        everywhere("\t", ""),
        everywhere("\n\t*\\{", " {"),
        everywhere("\n\t*(OFFSET|CHANNELS|\\})", " $1"),
        everywhere(": ", ":"),
        everywhere(":", " :"),
        everywhere("End Site", "end site Toe"),
        everywhere("position", "POSITION"),
        everywhere("rotation\n", "rotation \n"),
        everywhere("Frame Time", "FRAME TIME"),
        "\xEF\xBB\xBF" + step,
        step.substr(0, step.size() - 1),
        step + "\n  \r\n",
    };
    for (const std::string& layout : layouts)
        EXPECT_EQ(Told(ReadWhole(layout)), Told(ReadWhole(kStep))) << layout;
}

TEST(ReadMotion, TakesAllWholeFramesAndTellsWhatIsOdd) {
    using enum replay::CutCapture;
    struct Case {
        const char* from;
        const char* to;
        replay::CutCapture cut;
        std::size_t frames;
        const char* oddity;
    };
    const Case cases[] = {
        {"-60\n", "-60\n\n \t\r\n", kRefused, 2, ""},
        {"Frames: 2", "Frames: 1", kRefused, 2, "announced frames: 1, there are 2"},
        {"-60\n", "-60\n\x1A", kRefused, 2, "a Ctrl-Z ends the text"},
        {"-60\n", "-60\x1A\n1 2\n3\n", kRefused, 2, "a Ctrl-Z ends the text"},
        {"-60\n", "-60\nend", kRefused, 2,
         "the last line is left out: a number was expected, found 'end'"},
        {"-60\n", "-60\n1 2 3 4 5 6 7 8 9\n1 2\x1A", kRefused, 3,
         "announced frames: 2, there are 3; the last line is left out: frame 4 holds 2 of 9 "
         "numbers; a Ctrl-Z ends the text"},
        {"Frames: 2", "Frames: 3", kTaken, 2, "announced frames: 3, there are 2"},
        {"30 -60", "30", kTaken, 1,
         "announced frames: 2, there are 1; the last line is left out: frame 2 holds 8 of 9 "
         "numbers"},
    };
    for (const auto& [from, to, cut, frames, oddity] : cases) {
        SCOPED_TRACE(to);
        const Motion motion = ReadWhole(Replaced(kStep, from, to), cut);
        EXPECT_EQ(motion.frameCount, frames);
        EXPECT_EQ(motion.values.size(), frames * motion.channelCount);
        EXPECT_EQ(motion.oddity, oddity);
    }
    // Damage in the middle, and a capture without a frame, are no whole captures in any case.
    for (const char* broken : {"-60\n1 2\n1 2 3 4 5 6 7 8 9\n", "-60\nend\nend\n"})
        ReadRefused(Replaced(kStep, "-60\n", broken), kTaken);
    ReadRefused(kStep.substr(0, kStep.find("0 10 0")), kTaken);
}

// A decimal comma, as in many parts of the world.
class DecimalComma : public std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
};

TEST(ReadMotion, TakesEveryUsualSpellingOfNumbersInAnyLocale) {
    const std::pair<const char*, double> spellings[] = {
        {"+90", 90},     {".5", 0.5},
        {"-.5", -0.5},   {"5.", 5},
        {"+5.e-1", 0.5}, {"1E2", 100},
        {"1e+02", 100},  {"-0", 0},
        {"007", 7},      {"1e-310", 1e-310},
        {"1e30", 1e30},  {"-1e30", -1e30},
        {"0e999", 0},    {"0.30000000000000004", 0.1 + 0.2},
    };
    const std::locale before = std::locale::global(std::locale(std::locale(), new DecimalComma));
    for (const auto& [spelling, value] : spellings) {
        EXPECT_EQ(ReadWhole(Replaced(kStep, "90", spelling)).Frame(0)[6], value) << spelling;
    }
    std::locale::global(before);
}

TEST(ReadMotion, RefusesWhatIsNoNumber) {
    const char* const words[] = {"9O", "1,5",  "--1", "+-1", "-",     "+",    ".",     "1e",
                                 "e5", "0x1A", "nan", "inf", "1.2.3", "2e30", "-1e31", "{"};
    for (const std::string word : words) {
        EXPECT_EQ(ReadRefused(Replaced(kStep, "90", word)),
                  "step.bvh:19: a number was expected, found '" + word + "'");
    }
}

TEST(ReadMotion, NamesTheFileThatCannotBeRead) {
    for (const std::string path : {"/nowhere/step.bvh", "/tmp", "/dev/zero", ""}) {
        EXPECT_EQ(Describe(std::get<replay::ReadError>(replay::ReadMotion(path))),
                  path + ": there is no file of this name");
    }
}

TEST(UniqueJointNames, KeepJointsOfOneNameApart) {
    Motion motion;
    for (const char* name : {"Hand", "Hand", "Hand_2", "Hand", "Foot", "Hand_2"}) {
        motion.joints.emplace_back().name = name;
    }
    EXPECT_EQ(replay::UniqueJointNames(motion),
              (std::vector<std::string>{"Hand", "Hand_3", "Hand_2", "Hand_4", "Foot", "Hand_2_2"}));
}

TEST(BodyPart, IsReadFromTheWaysInWhichCapturesNameTheirJoints) {
    for (const char* left : {"LeftArm", "Left Leg", "LHipJoint", "l_foot", "lShldr", "Toe.L",
                             "hand_l", "rig:LeftFoot", "rig:L_Wrist", "LEFTHAND"})
        EXPECT_EQ(replay::SideOf(left), replay::BodySide::kLeft) << left;
    for (const char* right : {"RightArm", "RThumb", "r.foot", "rCollar", "Knee-R", "upper_right"})
        EXPECT_EQ(replay::SideOf(right), replay::BodySide::kRight) << right;
    for (const char* middle : {"", "L", "R:", "Hips", "LowerBack", "Root", "ROOT", "LEG", "Ribs",
                               "L5", "T12", "rig:Head", "Pelvis", "Spine_1"})
        EXPECT_EQ(replay::SideOf(middle), replay::BodySide::kMiddle) << middle;

    for (const char* foot : {"LeftFoot", "RIGHT_TOE", "rig:l_ankle", "Heel.R"})
        EXPECT_TRUE(replay::IsFoot(foot)) << foot;
    EXPECT_FALSE(replay::IsFoot("LeftLeg"));
}

}  // namespace
