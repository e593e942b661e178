#include "replay_core/motion/body_part.h"
#include "tests/replay_core/captures.h"

// Captures as they come: in every usual layout, damaged, and made to harm.

namespace {

using replay::Motion;

// Tells of the frames that a capture has and what is odd about it, or why it is refused.
std::string Reading(std::string_view text, replay::CutCapture cut = replay::CutCapture::kRefused) {
    const auto result = ReadStep(text, cut);
    if (const auto* const error = std::get_if<replay::ReadError>(&result))
        return replay::Describe(*error);
    const auto& motion = std::get<Motion>(result);
    EXPECT_EQ(motion.values.size(), motion.frameCount * motion.channelCount);
    return std::to_string(motion.frameCount) + " frames; " + motion.oddity;
}

// The step with the only place of `from` replaced.
std::string Replaced(std::string_view from, std::string_view to) {
    const std::size_t place = kStep.find(from);
    EXPECT_TRUE(place != kStep.npos && kStep.find(from, place + 1) == kStep.npos)
        << "not there exactly once: " << from;
    return std::string(kStep).replace(place, from.size(), to);
}

// All of a motion in one line.
std::string Told(const Motion& motion) {
    std::ostringstream out;
    const auto tell = [&out](const std::string& what, const std::array<double, 3>& offset) {
        out << what << " (" << offset[0] << ' ' << offset[1] << ' ' << offset[2] << ") ";
    };
    for (const replay::Joint& joint : motion.joints) {
        const bool isRoot = joint.parent == replay::kNoJoint;
        tell((isRoot ? "" : motion.joints[joint.parent].name) + '/' + joint.name, joint.offset);
        out << joint.firstChannel << ':';
        for (const replay::Channel channel : joint.channels)
            out << static_cast<int>(channel);
        out << ' ';
    }
    for (const replay::EndSite& end : motion.endSites)
        tell("end of " + motion.joints[end.joint].name, end.offset);
    out << motion.frameCount << " of " << motion.channelCount << " each " << motion.frameSeconds;
    for (const double value : motion.values)
        out << ' ' << value;
    return out.str();
}

TEST(ReadMotion, GivesWhatStandsThereInEveryUsualLayout) {
    const std::string step =
        "/Hip (0 7 0) 0:012534 Hip/Left Leg (1 -2 0.5) 6:543 end of Left Leg (0 -3 0) "
        "2 of 9 each 0.25 0 10 0 0 0 0 90 0 0 1 10 2 0 45 0 0 30 -60";
    EXPECT_EQ(Told(ReadWhole(kStep)), step);
    EXPECT_EQ(
        Told(ReadWhole("\xEF\xBB\xBFhierarchy\r\nRoot Hip {offset 0\n7 0 CHANNELS 6 "
                       "XPOSITION Yposition Zposition\tZrotation Xrotation Yrotation \r\n\r\n"
                       "JOINT  Left Leg \n\n{ OFFSET 1 -2 0.5 CHANNELS 3 Zrotation Yrotation "
                       "Xrotation end site Toe\n{OFFSET 0 -3 0}}}MOTION Frames :2 FRAME "
                       "Time:0.25\n \t\n  0 10 0 0\t0 0 90 0 0 \r\n\n1 10 2 0 45 0 0 30 -60")),
        step);
    // Channels in any order, on any joint or on none, and several roots.
    EXPECT_EQ(
        Told(ReadWhole("HIERARCHY ROOT a { OFFSET 0 0 0 JOINT b { OFFSET 1 0 0 CHANNELS 0 } }\n"
                       "ROOT c { CHANNELS 1 Xrotation OFFSET 0 0 0 JOINT d { OFFSET 0 0 0\n"
                       "CHANNELS 4 Yrotation Zposition yrotation Xposition } }\n"
                       "MOTION Frames: 1 Frame Time: 1\n5 1 2 3 4\n")),
        "/a (0 0 0) 0: a/b (1 0 0) 0: /c (0 0 0) 0:3 c/d (0 0 0) 1:4240 1 of 5 each 1 5 1 2 3 4");
}

// A decimal comma, as in many parts of the world.
class DecimalComma : public std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
};

TEST(ReadMotion, TakesEveryUsualSpellingOfNumbersInAnyLocale) {
    const std::pair<const char*, double> spellings[] = {
        {"+90", 90},  {".5", 0.5}, {"-.5", -0.5},      {"5.", 5},        {"+5.e-1", 0.5},
        {"1E2", 100}, {"007", 7},  {"1e-310", 1e-310}, {"-1e30", -1e30}, {"0e999", 0}};
    const std::locale before = std::locale::global(std::locale(std::locale(), new DecimalComma));
    for (const auto& [spelling, value] : spellings)
        EXPECT_EQ(ReadWhole(Replaced("90", spelling)).Frame(0)[6], value) << spelling;
    std::locale::global(before);
    for (const std::string word : {"9O", "1,5", "--1", "+-1", "-", ".", "1e", "e5", "0x1A", "nan",
                                   "inf", "1.2.3", "2e30", "{"})
        EXPECT_EQ(Reading(Replaced("90", word)),
                  "step.bvh:19: a number was expected, found '" + word + "'");
}

TEST(ReadMotion, TakesATimeThatIsCutToAFewDecimalsForTheWholeRateThatItMeans) {
    const std::pair<const char*, double> times[] = {
        {"0.0083333", 1.0 / 120}, {"0.008333", 1.0 / 120},
        {"0.0333333", 1.0 / 30},  {"0.016666", 1.0 / 60},
        {"0.0416667", 1.0 / 24},  {"0.0333667", 0.0333667},
        {"0.0137", 0.0137},       {"0.0020005", 0.0020005},
        {"1e-310", 1e-310},       {"7.5", 7.5}};
    for (const auto& [written, seconds] : times)
        EXPECT_EQ(ReadWhole(Replaced("0.25", written)).frameSeconds, seconds) << written;
}

struct Damage {
    const char* from;
    const char* to;
    std::string reading;
    replay::CutCapture cut = replay::CutCapture::kRefused;
};

const Damage kDamages[] = {
    {"HIERARCHY", "HIERACHY", ":1: 'HIERARCHY' was expected, found 'HIERACHY'"},
    {"ROOT Hip", "JOINT Hip", ":2: ROOT was expected, found 'JOINT'"},
    {"ROOT Hip", "ROOT", ":2: the joint has no name"},
    {"\tOFFSET 0 7 0\n", "", ":14: joint 'Hip' has no OFFSET"},
    {"0.5\n", "0.5\nOFFSET 1 2 3\n", ":9: joint 'Left Leg' has two OFFSETs"},
    {"CHANNELS 3", "CHANNELS 7", ":9: a joint has at most 6 channels, 7 are announced"},
    {"Xposition Yposition", "Xposition Xposition", ":5: channel 'Xposition' stands twice"},
    {"\t\tEnd", "\t\tCHANNELS 1 Xrotation\nEnd", ":10: joint 'Left Leg' has two CHANNELS"},
    {"\t\t}\n\t}\n}", "\t\t}\n\t}",
     ":15: OFFSET, CHANNELS, JOINT, End Site or } of joint 'Hip' was expected, found 'MOTION'"},
    {"MOTION", "}\nMOTION", ":16: ROOT or MOTION was expected, found '}'"},
    {"Frames: 2", "Frames: 0", ":17: the capture has no frames"},
    {"Frames: 2", "Frames: 1e3", ":17: a whole number was expected, found '1e3'"},
    {"Frames: 2", "Frames: 3", ":20: the file ends after 2 of 3 frames"},
    {"0.25", "-0.25", ":18: the frame time must be more than 0 seconds"},
    {"0.25", "0.25 0 10", ":18: the end of the line was expected, found '0'"},
    {" 90 0 0", " 90 0", ":19: frame 1 holds 8 of 9 numbers"},
    {" 90 0 0", " 90 0 0 x", ":19: frame 1 holds more than 9 numbers, found 'x'"},
    {"Frames: 2", "Frames: 1\x1A", ":17: 'Frame' was expected, but the file ends"},
    {" 90", " \x01ninety-degrees-and-a-little-bit-more-than-that",
     ":19: a number was expected, found '?ninety-degrees-and-a-little-bit-more-th...'"},
    // What is only odd.
    {"-60\n", "-60\n\n \t\r\n", "2 frames; "},
    {"Frames: 2", "Frames: 1", "2 frames; announced frames: 1, there are 2"},
    {"-60\n", "-60\x1A\n1 2\n3\n", "2 frames; a Ctrl-Z ends the text"},
    {"-60\n", "-60\n1 2 3 4 5 6 7 8 9\n1 2\x1A",
     "3 frames; announced frames: 2, there are 3; the last line is left out: frame 4 holds 2 of 9 "
     "numbers; a Ctrl-Z ends the text"},
    // Damage in the middle, and a capture without a frame, are no whole captures in any case.
    {"Frames: 2", "Frames: 3", "2 frames; announced frames: 3, there are 2",
     replay::CutCapture::kTaken},
    {"-60\n", "-60\n1 2\n1 2 3 4 5 6 7 8 9\n", ":21: frame 3 holds 2 of 9 numbers",
     replay::CutCapture::kTaken},
    {"0 10 0 0 0 0 90 0 0\n1 10 2 0 45 0 0 30 -60\n", "", ":18: the file ends after 0 of 2 frames",
     replay::CutCapture::kTaken},
};

TEST(ReadMotion, RefusesDamageInOneLineThatNamesThePlaceOrTakesItWithAWord) {
    for (const auto& [from, to, reading, cut] : kDamages)
        EXPECT_EQ(Reading(Replaced(from, to), cut),
                  (reading.starts_with(':') ? "step.bvh" : "") + reading);
    // Within the digits of its very last number, "-60", a cut capture is a capture.
    for (std::size_t length = 0; length < kStep.size() - 2; ++length)
        EXPECT_TRUE(Reading(kStep.substr(0, length)).starts_with("step.bvh:")) << length;
    EXPECT_EQ(Reading("HIERARCHY\nROOT a { OFFSET 0 0 0 }\nMOTION\nFrames: 1000000000\n"),
              "step.bvh:3: no joint has a channel");
    for (const std::string path : {"/nowhere/step.bvh", "/tmp", "/dev/zero", ""})
        EXPECT_EQ(Describe(std::get<replay::ReadError>(replay::ReadMotion(path))),
                  path + ": there is no file of this name");
}

TEST(ReadMotion, TakesMemoryByTheSizeOfTheTextAndNestsAsDeepAsThatIsLong) {
    constexpr std::size_t kDepth = 100000;
    const std::string channel = "{OFFSET 1 0 0 CHANNELS 1 Zrotation\n";
    std::string deep = "HIERARCHY\nROOT a" + channel;
    std::string values = "90";
    for (std::size_t i = 1; i < kDepth; ++i) {
        deep += "JOINT a" + channel;
        values += " 0";
    }
    deep += std::string(kDepth, '}') + "MOTION Frames: 1 Frame Time: 1\n" + values;
    const std::pair<std::string, std::size_t> texts[] = {
        {Replaced("Frames: 2", "Frames: 18446744073709551615"), 16384},
        {Replaced("0 10 0", values), 4 * values.size()},
        {deep, 16 * deep.size()}};
    for (const auto& [text, most] : texts) {
        std::istringstream stream(text);  // not counted
        const AllocationPeak peak;
        const auto result = replay::ReadMotion(stream, "step.bvh");
        EXPECT_LT(peak.Bytes(), most);
    }
    std::vector<TVL::CMatrix4> world(kDepth);
    replay::EvaluatePose(ReadWhole(deep), 0, 1.0, world);
    EXPECT_NEAR(world.back()[3][1], static_cast<double>(kDepth - 1), 1e-6);
}

TEST(JointNames, AreKeptApartAndTellSidesAndFeet) {
    Motion motion;
    for (const char* name : {"Hand", "Hand", "Hand_2", "Hand", "Foot", "Hand_2"})
        motion.joints.emplace_back().name = name;
    EXPECT_EQ(replay::UniqueJointNames(motion),
              (std::vector<std::string>{"Hand", "Hand_3", "Hand_2", "Hand_4", "Foot", "Hand_2_2"}));
    using enum replay::BodySide;
    const std::pair<replay::BodySide, std::vector<const char*>> sides[] = {
        {kLeft, {"LeftArm", "LHipJoint", "l_foot", "lShldr", "Toe.L", "rig:L_Wrist", "LEFTHAND"}},
        {kRight, {"RightArm", "upper_right"}},
        {kMiddle, {"", "L", "R:", "LowerBack", "Root", "LEG", "Ribs", "L5", "rig:Head"}}};
    for (const auto& [side, names] : sides)
        for (const char* name : names)
            EXPECT_EQ(replay::SideOf(name), side) << name;
    for (const char* foot : {"LeftFoot", "RIGHT_TOE", "rig:l_ankle", "Heel.R"})
        EXPECT_TRUE(replay::IsFoot(foot)) << foot;
    EXPECT_FALSE(replay::IsFoot("LeftLeg"));
}

}  // namespace
