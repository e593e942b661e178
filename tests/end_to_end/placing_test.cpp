#include <algorithm>
#include <cmath>
#include <numbers>

#include "platform/process.h"
#include "replay/request.h"
#include "tests/end_to_end/command.h"

// Which part of a capture comes to be where in a scene, how large, and what an animator is told of
// that.

namespace {

constexpr double kNone = -1;

struct Placing {
    std::string capture;
    std::string options;
    double frames;
    double firstSeconds;  // in the scene
    double lastSeconds;
    double rangeFirst;  // frames of the scene
    double rangeLast;
    double height = 1;
    double furthest = 3.9;
    double between = 0;     // ticks
    double likely = kNone;  // metres in a unit
    double sceneRate = 30;
};

std::vector<Placing> Placings() {
    const std::string walk = Walk(40);
    const std::string longWalk = Walk(200);
    const std::string fast = With(Walk(10), "0.05", "0.0083333");
    const std::string uneven = With(Walk(10), "0.05", "0.0137");
    const auto turned = [](double degrees) { return std::cos(degrees * std::numbers::pi / 180); };
    const double cmu = 0.056444;
    const double lying = 1.75 / turned(80);  // of metres, where 1.75 is the height in frame 80
    return {
        {walk, "--scale 1", 40, 0, 1.95, 0, 59},
        {longWalk, "--scale 1", 200, 0, 9.95, 0, 299, 1, 19.9},
        {longWalk, "--scale 1 --keep-range", 200, 0, 9.95, 0, 100, 1, 19.9},
        {walk, "--scale 1 --from 7 --to 1.45s", 23, 0.35, 1.45, 10, 44, turned(7), 2.2},
        {walk, "--scale 1 --from 0.31s --to 30 --start 10", 24, 10, 11.15, 300, 335, turned(7),
         2.3},
        {walk, "--scale 1 --to 0 --start 0.5", 1, 0.5, 0.5, 15, 16, 1, 0},
        {walk, "--scale 1 --start -0.5", 40, -0.5, 1.45, -15, 44},
        {walk, "--scale 1 --fps 24 --start 10", 40, 10, 11.95, 240, 287, 1, 3.9, 0, kNone, 24},
        {fast, "--scale 1", 10, 0, 0.075, 0, 3, 1, 0.9},
        {uneven, "--scale 1", 10, 0, 0.1233, 0, 4, 1, 0.9, 9},
        {walk, "", 40, 0, 1.95, 0, 59, cmu, 3.9 * cmu, 0, 1},
        {walk, "--scale 3.5", 40, 0, 1.95, 0, 59, 3.5, 3.9 * 3.5, 0, 1},
        {longWalk, "--scale 1 --from 80", 120, 4, 9.95, 120, 299, turned(80), 11.9},
        {walk, "--height 1.75 --from 7", 33, 0.35, 1.95, 10, 59, 1.75, 3.2 * 1.75 / turned(7)},
        {walk, "--height 4", 40, 0, 1.95, 0, 59, 4, 3.9 * 4},
        {longWalk, "--height 1.75 --from 80", 120, 4, 9.95, 120, 299, 1.75, 11.9 * lying, 0, 1}};
}

// What the environment says of another part reaches nobody who did not ask for one.
TEST_F(Command, RecordsThePartThatIsMeantWhereItIsMeantAndSaysSo) {
    namespace variable = replay::variable;
    platform::SetVariable(variable::kTo, "3");
    platform::SetVariable(variable::kRange, variable::kRangeStays);
    for (const Placing& placing : Placings()) {
        SCOPED_TRACE(placing.options);
        Write("walk.bvh", placing.capture);
        const Json told = Ask("record walk.bvh -o take --poses poses " + placing.options);
        const auto expect = [&](const char* key, double value) {
            EXPECT_NEAR(told.value(key, kNone), value, 1e-9) << key;
        };
        expect("frames", placing.frames);
        expect("firstSeconds", placing.firstSeconds);
        expect("lastSeconds", placing.lastSeconds);
        expect("heightMetres", placing.height);
        expect("furthestMetres", placing.furthest);
        expect("framesBetweenTicks", placing.between);
        expect("likelyMetresPerUnit", placing.likely);
        EXPECT_NEAR(told["rangeSeconds"][0], placing.rangeFirst / placing.sceneRate, 1e-9);
        EXPECT_NEAR(told["rangeSeconds"][1], placing.rangeLast / placing.sceneRate, 1e-9);
        EXPECT_EQ(Line(told, {"undoSteps", "undoIdentical", "redoIdentical"}), "1 true true");
        EXPECT_LT(told["maxPositionErrorMetres"], 1e-6 * std::max(1.0, placing.furthest));
        // The poses that the scene has at those times.
        const std::string poses = Read("poses");
        EXPECT_EQ(std::ranges::count(poses, '\n'), 3 * placing.frames + 1);
        const std::string first = poses.substr(poses.find('\n') + 1);
        EXPECT_NEAR(std::stod(first), placing.firstSeconds, 1e-9) << first;
    }
    for (const char* const name : {variable::kTo, variable::kRange})
        platform::SetVariable(name, "");
}

TEST_F(Command, RecordsAllCapturesOfAFolderOrAPatternThatCanBe) {
    std::filesystem::create_directories(File("caps/below.bvh"));
    for (const char* const name : {"caps/b.bvh", "caps/a.BVH", "caps/c.txt", "caps/.d.bvh"})
        Write(name, Walk(20));
    Write("caps/ab.bvh", With(Walk(20), "Frames: 20", "Frames: 21"));
    const auto withSlashes = [](std::string text) {
        std::ranges::replace(text, '\\', '/');
        return text;
    };
    const auto captures = [&](const Json& told) {
        std::string text;
        for (const Json& capture : told["captures"])
            text +=
                capture.value("take", withSlashes(capture.value("error", "")).substr(0, 12)) + ' ';
        return text;
    };
    const Ending ending = Run("record caps -o all.scene --scale 1 --json");
    EXPECT_EQ(ending.status, 1) << ending.error;
    const Json told = Json::parse(ending.out);
    EXPECT_EQ(captures(told), "a caps/ab.bvh: b ");
    EXPECT_EQ(Line(told, {"nodes", "keys", "undoSteps", "saved"}), "6 80 1 \"all.scene\"");
    // The first one tells the scale.
    Write("caps/c.txt", With(Walk(20), "-0.5", "-0.25"));
    const Json high = Ask("record caps/?.* --height 2");
    EXPECT_EQ(captures(high), "a b c ");
    EXPECT_NEAR(high["captures"][2]["heightMetres"], 1.5, 1e-9);
    EXPECT_EQ(captures(Ask("record caps/*b.bvh caps/c.txt --partial --scale 1")), "ab b c ");

    const Ending read = Run("record caps no* --into all.scene --scale 0.01");
    EXPECT_EQ(read.status, 1);
    for (const char* const part :
         {"Recorded 2 of 4 captures in ", "  0.01 m (--scale 1?)  ", "  none  ",
          "Not recorded: caps/ab.bvh:", "Not recorded: no*: no file has such a name\n",
          "Nothing was saved: -o FILE saves the scene\n"})
        EXPECT_NE(withSlashes(read.out).find(part), std::string::npos) << read.out;
    // Of a scene that is there the range only grows.
    const Json grown = Ask("record caps/a.BVH --into all.scene --scale 1 --start -0.5");
    EXPECT_EQ(Line(grown, {"rangeSeconds"}), "[-0.5,0.9666666666666667]");
}

}  // namespace
