#include <regex>

#include "tests/end_to_end/command.h"
#include "tests/end_to_end/samples.h"

// Takes that leave the scene for other programs.

namespace {

class Export : public Command {};

// Parts of two captures at times of their own in one scene, with all else that can be there.
TEST_F(Export, HoldsPartsAtTheTimesAtWhichTheyWereRecorded) {
    Write("a.bvh", Walk(40));
    Write("b.bvh", Walk(40));
    Do("draw --path \"0,0,0 100,0,0\" --name Path -o path");
    Do("draw path --sphere 9 --guide --name Guide -o guide");
    Do("record a.bvh --scale 1 --from 10 --to 30 --start 3.21 --follow-camera --into guide -o one");
    Do("record b.bvh --scale 1 --from 20 --to 20 --start 20 --into one -o two");
    const Json takes = Ask("export two -o out.glb")["takes"];
    ASSERT_EQ(takes.size(), 2U);
    EXPECT_EQ(Line(takes[0], {"name", "frames"}), "\"a\" 21");
    EXPECT_EQ(Line(takes[1], {"name", "frames"}), "\"b\" 1");
    EXPECT_NEAR(takes[0]["startSeconds"], 3.21, 1e-9);
    EXPECT_EQ(takes[0]["notInTheFile"][0],
              "the motion of the lens of \"Camera\": it stays as it is in the first frame");
    Do("export two --take a -o out.bvh");
    Do("record out.bvh --scale 1 --take a --start 3.21 --poses again");
    const Samples all = SamplesIn(Do("sample two --times 3.21:4.21:0.05"));
    EXPECT_LT(FurthestOff({{"a_Hip", all.at("a_Hip")}, {"a_Knee", all.at("a_Knee")}},
                          SamplesIn(Read("again"))),
              1e-5);
}

// Whoever opens the scene: keys are where they are, also in the host's own controllers.
TEST_F(Export, GoesByWhatIsChosenAndReadsTheSameTakeWithoutACoreAndAfterConversion) {
    Do("record " + std::string(SMALL_CAPTURES) + "/uneven_rate.bvh --scale 1 --take T -o scene");
    Do("convert scene -o plain");
    struct Choice {
        std::string words;
        std::string step = "0.0137";
        std::string scale = "1";
    };
    for (const Choice& choice : std::vector<Choice>{{"scene --fps 24", "0.041666666666666664"},
                                                    {"scene --scale 0.01", "0.0137", "0.01"},
                                                    {"scene --order YXZ --take T"},
                                                    {"scene --no-core"},
                                                    {"plain --no-plugin"},
                                                    {"plain"}}) {
        SCOPED_TRACE(choice.words);
        Do("export -o out.bvh " + choice.words);
        const std::string joints = Read("out.bvh");
        EXPECT_EQ(joints.find("Yrotation Xrotation Zrotation") == joints.npos,
                  choice.words.find("YXZ") == choice.words.npos);
        Write("out.bvh", std::regex_replace(joints, std::regex("(ROOT|JOINT) T_"), "$1 "));
        Do("record out.bvh --take T --poses again --scale " + choice.scale);
        EXPECT_LT(FurthestOff(SamplesIn(Read("again")),
                              SamplesIn(Do("sample scene --times 0:0.8083:" + choice.step))),
                  1e-5);
    }
}

TEST_F(Export, RefusesWhatItCannotWriteAndLeavesWhatIsThere) {
    Write("a.bvh", Walk(4));
    Write("b.bvh", Walk(4));
    Do("record a.bvh b.bvh --scale 1 -o scene");
    Do("draw --sphere 1 -o still");
    Write("old.bvh", "old");
    const std::pair<std::string, std::string> kUsage[] = {
        {"scene -o old.fbx", "--output: old.fbx does not end in .bvh or .glb or .gltf"},
        {"absent -o old", "--output: old does not end"},
        {"scene -o old.bvh", "scene: of several takes (\"a\", \"b\") a .bvh file holds one, which"},
        {"scene -o old.bvh --order ZXZ", "--order: ZXZ is not X, Y and Z"},
        {"scene -o old.bvh --fps 1e9", "--fps: 1e+09 is not from "},
        {"scene -o old.bvh --fps 0", "--fps: "},
        {"scene -o old.bvh --scale 0", "--scale: "},
        {"scene -o old.bvh --scale 1e-310", "--scale: 1e-310 is not from "},
        {"old.bvh -o old.bvh", "--output: old.bvh is the file of SCENE too"}};
    const std::pair<std::string, std::string> kFailures[] = {
        {"scene -o old.bvh --take c", "scene: there is no take \"c\" in it, but \"a\", \"b\""},
        {"still -o old.bvh", "still: there is no take in it"},
        {"absent -o old.bvh", "absent: "},
        {"scene -o nowhere/a.bvh --take a", "nowhere/a.bvh: "}};
    for (const auto& [words, line] : kUsage)
        ExpectRefusal("export " + words, line, 2);
    for (const auto& [words, line] : kFailures)
        ExpectRefusal("export " + words, line, 1);
    EXPECT_EQ(Read("old.bvh"), "old");
    const std::string told = Do("export scene -o new.BVH --take b");
    EXPECT_TRUE(told.starts_with("Take b: 3 nodes, 4 frames at 20 a second (0 s to 0.15 s)\n"))
        << told;
    EXPECT_NE(told.find("\nSaved as new.BVH\n"), std::string::npos) << told;
}

}  // namespace
