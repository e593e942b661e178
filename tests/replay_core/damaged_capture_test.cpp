#include <gtest/gtest.h>

#include <sstream>
#include <streambuf>
#include <variant>
#include <vector>

#include "replay_core/motion/pose.h"
#include "replay_core/motion/read_motion.h"
#include "tests/replay_core/captures.h"
#include "tests/support/allocations.h"

namespace {

struct Damage {
    const char* from;
    const char* to;
    const char* reading;
};

const Damage kDamages[] = {
    {"HIERARCHY", "HIERACHY", ":1: 'HIERARCHY' was expected, found 'HIERACHY'"},
    {"ROOT Hip", "JOINT Hip", ":2: ROOT was expected, found 'JOINT'"},
    {"ROOT Hip", "ROOT", ":2: the joint has no name"},
    {"\tOFFSET 0 7 0", "\tOFFSET 0 7", ":5: a number was expected, found 'CHANNELS'"},
    {"\tOFFSET 0 7 0\n", "", ":14: joint 'Hip' has no OFFSET"},
    {"0.5\n", "0.5\nOFFSET 1 2 3\n", ":9: joint 'Left Leg' has two OFFSETs"},
    {"CHANNELS 3", "CHANNELS 7", ":9: a joint has at most 6 channels, 7 are announced"},
    {"CHANNELS 3", "CHANNELS 2",
     ":9: OFFSET, CHANNELS, JOINT, End Site or } of joint 'Left Leg' was expected, found "
     "'Xrotation'"},
    {"Xposition Yposition", "Xposition Xposition", ":5: channel 'Xposition' stands twice"},
    {"\t\tEnd", "\t\tCHANNELS 1 Xrotation\nEnd", ":10: joint 'Left Leg' has two CHANNELS"},
    {"\t\t}\n\t}\n}", "\t\t}\n\t}",
     ":15: OFFSET, CHANNELS, JOINT, End Site or } of joint 'Hip' was expected, found 'MOTION'"},
    {"MOTION", "}\nMOTION", ":16: ROOT or MOTION was expected, found '}'"},
    {"Frames: 2", "Frames: 0", ":17: the capture has no frames"},
    {"Frames: 2", "Frames: 99999999999999999999",
     ":17: a whole number was expected, found '99999999999999999999'"},
    {"Frames: 2", "Frames: 3", ":20: the file ends after 2 of 3 frames"},
    {"0.25", "-0.25", ":18: the frame time must be more than 0 seconds"},
    {"0.25", "0.25 0 10", ":18: the end of the line was expected, found '0'"},
    {" 90 0 0", " 90 0", ":19: frame 1 holds 8 of 9 numbers"},
    {" 90 0 0", " 90 0 0 x", ":19: frame 1 holds more than 9 numbers, found 'x'"},
    {"Frames: 2", "Frames: 1\x1A", ":17: 'Frame' was expected, but the file ends"},
    {" 90 0 0\n", " 90 0 0\n\x1A", ":20: the file ends after 1 of 2 frames"},
    {" 90", " \x01\x02", ":19: a number was expected, found '?\?'"},
    {" 90", " ninety-degrees-and-a-little-bit-more-than-that",
     ":19: a number was expected, found 'ninety-degrees-and-a-little-bit-more-tha...'"},
    // What is only odd.
    {"-60\n", "-60\n\n \t\r\n", "2 frames; "},
    {"Frames: 2", "Frames: 1", "2 frames; announced frames: 1, there are 2"},
    {"-60\n", "-60\n\x1A", "2 frames; a Ctrl-Z ends the text"},
    {"-60\n", "-60\x1A\n1 2\n3\n", "2 frames; a Ctrl-Z ends the text"},
    {"-60\n", "-60\nend",
     "2 frames; the last line is left out: a number was expected, found 'end'"},
    {"-60\n", "-60\n1 2 3 4 5 6 7 8 9\n1 2\x1A",
     "3 frames; announced frames: 2, there are 3; the last line is left out: frame 4 holds 2 of 9 "
     "numbers; a Ctrl-Z ends the text"},
};

// Damage in the middle, and a capture without a frame, are no whole captures in any case.
const Damage kTakenIfCut[] = {
    {"Frames: 2", "Frames: 3", "2 frames; announced frames: 3, there are 2"},
    {"30 -60", "30",
     "1 frames; announced frames: 2, there are 1; the last line is left out: frame 2 holds 8 of 9 "
     "numbers"},
    {"-60\n", "-60\n1 2\n1 2 3 4 5 6 7 8 9\n", ":21: frame 3 holds 2 of 9 numbers"},
    {"-60\n", "-60\nend\nend\n", ":21: a number was expected, found 'end'"},
    {"0 10 0 0 0 0 90 0 0\n1 10 2 0 45 0 0 30 -60\n", "", ":18: the file ends after 0 of 2 frames"},
};

TEST(DamagedCapture, IsRefusedInOneLineThatNamesThePlaceOrTakenWithAWord) {
    using enum replay::CutCapture;
    const auto expect = [](const Damage& damage, replay::CutCapture cut) {
        const std::string reading = damage.reading;
        EXPECT_EQ(Reading(Replaced(kStep, damage.from, damage.to), cut),
                  (reading.starts_with(':') ? "step.bvh" : "") + reading);
    };
    for (const Damage& damage : kDamages)
        expect(damage, kRefused);
    for (const Damage& damage : kTakenIfCut)
        expect(damage, kTaken);
    // Within the digits of its very last number, "-60", a cut capture is a capture.
    for (std::size_t length = 0; length < kStep.size() - 2; ++length)
        EXPECT_TRUE(Reading(kStep.substr(0, length)).starts_with("step.bvh:")) << length;
    EXPECT_EQ(Reading(""), "step.bvh:1: 'HIERARCHY' was expected, but the file ends");
    EXPECT_EQ(Reading("HIERARCHY\nMOTION\n"), "step.bvh:2: ROOT was expected, found 'MOTION'");
    EXPECT_EQ(Reading("HIERARCHY\nROOT a { OFFSET 0 0 0 }\nMOTION\nFrames: 1000000000\n"),
              "step.bvh:3: no joint has a channel");
}

// The most that reading the text holds at one time, in bytes; the text itself is not counted.
std::size_t PeakOfReading(const std::string& text) {
    std::istringstream stream(text);
    const AllocationPeak peak;
    const auto result = replay::ReadMotion(stream, "step.bvh");
    return peak.Bytes();
}

TEST(DamagedCapture, TakesMemoryByItsSizeWhateverItAnnounces) {
    constexpr std::size_t kSmall = 16384;  // what a reader of a few lines needs
    for (const char* count : {"1000000000", "18446744073709551615"}) {
        const std::string frames = Replaced(kStep, "Frames: 2", std::string("Frames: ") + count);
        EXPECT_LT(PeakOfReading(frames), kSmall);
    }
    std::string longLine(kStep.substr(0, kStep.find("0 10 0")));
    for (int i = 0; i < 500000; ++i)
        longLine += "0 ";
    EXPECT_LT(PeakOfReading(longLine), 4 * longLine.size());
}

std::string NestedCapture(std::size_t depth) {
    std::string text = "HIERARCHY\nROOT a{OFFSET 1 0 0 CHANNELS 1 Zrotation\n";
    std::string values = "\n90";
    for (std::size_t i = 1; i < depth; ++i) {
        text += "JOINT a{OFFSET 1 0 0 CHANNELS 1 Zrotation\n";
        values += " 0";
    }
    return text + std::string(depth, '}') + "\nMOTION\nFrames: 1\nFrame Time: 1" + values;
}

TEST(DamagedCapture, MayNestAsDeepAsItIsLong) {
    constexpr std::size_t kDepth = 100000;
    const std::string text = NestedCapture(kDepth);
    EXPECT_LT(PeakOfReading(text), 16 * text.size());
    const replay::Motion motion = ReadWhole(text);
    ASSERT_EQ(motion.joints.size(), kDepth);
    std::vector<TVL::CMatrix4> world(kDepth);
    replay::EvaluatePose(motion, 0, 1.0, world);
    EXPECT_NEAR(world.back()[3][1], static_cast<double>(kDepth - 1), 1e-6);
    const std::string unbalanced = text.substr(0, text.find('}')) + "MOTION";
    EXPECT_EQ(Reading(unbalanced),
              "step.bvh:100002: OFFSET, CHANNELS, JOINT, End Site or } of joint 'a' was expected, "
              "found 'MOTION'");
}

// A file on a disk that fails after its first bytes.
class FailingDisk : public std::stringbuf {
  public:
    using std::stringbuf::stringbuf;

  private:
    int_type underflow() override { throw std::ios_base::failure("unreadable"); }
};

TEST(DamagedCapture, IsRefusedWhereTheDiskFails) {
    FailingDisk disk(std::string(kStep.substr(0, kStep.find("MOTION"))), std::ios::in);
    std::istream stream(&disk);
    EXPECT_EQ(Describe(std::get<replay::ReadError>(replay::ReadMotion(stream, "step.bvh"))),
              "step.bvh:15: the file cannot be read on from here");
}

}  // namespace
