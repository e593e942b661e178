#include "replay_core/motion/read_motion.h"

#include <gtest/gtest.h>

#include <locale>
#include <regex>
#include <utility>
#include <vector>

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
    for (const auto& [spelling, value] : spellings)
        EXPECT_EQ(ReadWhole(Replaced(kStep, "90", spelling)).Frame(0)[6], value) << spelling;
    std::locale::global(before);
    for (const std::string word : {"9O", "1,5", "--1", "+-1", "-", "+", ".", "1e", "e5", "0x1A",
                                   "nan", "inf", "1.2.3", "2e30", "-1e31", "{"})
        EXPECT_EQ(Reading(Replaced(kStep, "90", word)),
                  "step.bvh:19: a number was expected, found '" + word + "'");
}

TEST(ReadMotion, NamesTheFileThatCannotBeRead) {
    for (const std::string path : {"/nowhere/step.bvh", "/tmp", "/dev/zero", ""})
        EXPECT_EQ(Describe(std::get<replay::ReadError>(replay::ReadMotion(path))),
                  path + ": there is no file of this name");
}

TEST(UniqueJointNames, KeepJointsOfOneNameApart) {
    Motion motion;
    for (const char* name : {"Hand", "Hand", "Hand_2", "Hand", "Foot", "Hand_2"})
        motion.joints.emplace_back().name = name;
    EXPECT_EQ(replay::UniqueJointNames(motion),
              (std::vector<std::string>{"Hand", "Hand_3", "Hand_2", "Hand_4", "Foot", "Hand_2_2"}));
}

TEST(BodyPart, IsReadFromTheWaysInWhichCapturesNameTheirJoints) {
    using enum replay::BodySide;
    const std::pair<replay::BodySide, std::vector<const char*>> sides[] = {
        {kLeft,
         {"LeftArm", "Left Leg", "LHipJoint", "l_foot", "lShldr", "Toe.L", "hand_l", "rig:LeftFoot",
          "rig:L_Wrist", "LEFTHAND"}},
        {kRight, {"RightArm", "RThumb", "r.foot", "rCollar", "Knee-R", "upper_right"}},
        {kMiddle,
         {"", "L", "R:", "Hips", "LowerBack", "Root", "ROOT", "LEG", "Ribs", "L5", "T12",
          "rig:Head", "Pelvis", "Spine_1"}}};
    for (const auto& [side, names] : sides)
        for (const char* name : names)
            EXPECT_EQ(replay::SideOf(name), side) << name;
    for (const char* foot : {"LeftFoot", "RIGHT_TOE", "rig:l_ankle", "Heel.R"})
        EXPECT_TRUE(replay::IsFoot(foot)) << foot;
    EXPECT_FALSE(replay::IsFoot("LeftLeg"));
}

}  // namespace
