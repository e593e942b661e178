#include <array>
#include <cmath>
#include <regex>
#include <sstream>

#include "tests/end_to_end/command.h"

// Takes that leave the scene for other programs.

namespace {

struct ExportedCapture {
    std::string path;
    std::string metresPerUnit;
};

// Each of the small ones does something that those of people do not.
std::vector<ExportedCapture> AllCaptures() {
    const std::string real = "/usr/share/assimp/models/BVH/";
    std::vector<ExportedCapture> captures;
    if (std::filesystem::exists(kRealCapture))
        captures = {{real + "01_01.bvh", "0.056444"},
                    {real + "01_03.bvh", "0.056444"},
                    {real + "Boxing_Toes.bvh", "0.01"}};
    for (const char* name : {"two_roots", "six_channels", "other_orders", "hinges", "uneven_rate"})
        captures.push_back({std::string(SMALL_CAPTURES) + '/' + name + ".bvh", "1"});
    return captures;
}

// Of each node, by its name, the places of all frames in their order, as `sample` writes them.
std::map<std::string, std::vector<std::array<double, 3>>> PlacesIn(const std::string& table) {
    std::map<std::string, std::vector<std::array<double, 3>>> places;
    std::istringstream rows(table);
    std::string row;
    std::getline(rows, row);
    while (std::getline(rows, row)) {
        std::istringstream fields(row.substr(row.find(',') + 1));
        std::string name, number;
        std::getline(fields, name, ',');
        std::array<double, 3>& place = places[name].emplace_back();
        for (double& axis : place) {
            std::getline(fields, number, ',');
            axis = std::stod(number);
        }
    }
    return places;
}

class Export : public Command {
  protected:
    // Records what was exported, and holds it against the places of the joints in the scene.
    void ExpectSamePlaces(const std::string& before, const std::string& words) {
        Do("record out.bvh --take T --poses again " + words);
        const auto meant = PlacesIn(before);
        const auto found = PlacesIn(Read("again"));
        ASSERT_EQ(found.size(), meant.size());
        double furthest = 0;
        for (const auto& [name, places] : meant) {
            ASSERT_TRUE(found.contains(name)) << name;
            ASSERT_EQ(found.at(name).size(), places.size());
            for (std::size_t i = 0; i < places.size(); ++i)
                for (std::size_t axis = 0; axis < 3; ++axis)
                    furthest =
                        std::max(furthest, std::abs(found.at(name)[i][axis] - places[i][axis]));
        }
        EXPECT_LT(furthest, 1e-5);
    }
};

TEST_F(Export, BringsEachCaptureBackFrameForFrame) {
    for (const ExportedCapture& capture : AllCaptures()) {
        SCOPED_TRACE(capture.path);
        const std::string scale = " --scale " + capture.metresPerUnit;
        const Json recorded =
            Ask("record " + capture.path + scale + " --take T -o scene --poses poses");
        const Json told = Ask("export scene -o out.bvh" + scale)["takes"][0];
        EXPECT_EQ(told["frames"], recorded["frames"]);
        EXPECT_LT(told["furthestMetres"], 1e-5);
        EXPECT_EQ(told["notInTheFile"], Json::parse(R"(["the camera \"Camera\""])"));
        ExpectSamePlaces(Read("poses"), scale);
    }
}

TEST_F(Export, GoesByTheFramesUnitsOrdersAndTakesThatAreChosen) {
    Do("record " + std::string(SMALL_CAPTURES) + "/uneven_rate.bvh --scale 1 --take T -o scene");
    struct Choice {
        std::string words;
        std::string times;
        std::string scale = "1";
    };
    for (const Choice& choice : std::vector<Choice>{{"--fps 24", "0:0.8083:0.041666666666666664"},
                                                    {"--scale 0.01", "0:0.8083:0.0137", "0.01"},
                                                    {"--order YXZ --take T", "0:0.8083:0.0137"}}) {
        SCOPED_TRACE(choice.words);
        Do("export scene -o out.bvh " + choice.words);
        const std::string joints = Read("out.bvh");
        EXPECT_EQ(joints.find("Yrotation Xrotation Zrotation") == joints.npos,
                  choice.words.find("YXZ") == choice.words.npos);
        std::string sampled = Do("sample scene --times " + choice.times);
        ExpectSamePlaces(sampled, "--scale " + choice.scale);
    }
}

// Whoever opens the scene: keys are where they are, also in the host's own controllers.
TEST_F(Export, ReadsTheSameTakeWithoutACoreAndAfterConversion) {
    Do("record " + std::string(SMALL_CAPTURES) +
       "/uneven_rate.bvh --scale 1 --take T -o scene --poses poses");
    const std::string poses = Read("poses");
    Do("convert scene -o plain");
    for (const char* words : {"scene --no-core", "plain --no-plugin", "plain"}) {
        SCOPED_TRACE(words);
        Do(std::string("export -o out.bvh ") + words);
        Write("out.bvh", std::regex_replace(Read("out.bvh"), std::regex("(ROOT|JOINT) T_"), "$1 "));
        ExpectSamePlaces(poses, "--scale 1");
    }
}

TEST_F(Export, RefusesWhatItCannotWriteAndLeavesWhatIsThere) {
    Write("a.bvh", Walk(4));
    Write("b.bvh", Walk(4));
    Do("record a.bvh b.bvh --scale 1 -o scene");
    Do("draw --sphere 1 -o still");
    Write("old.bvh", "old");
    const std::pair<std::string, std::string> kUsage[] = {
        {"scene -o old.fbx",
         "--output: old.fbx does not end as a kind of file that is known: .bvh"},
        {"absent -o old", "--output: old does not end"},
        {"scene -o old.bvh", "scene: of several takes (\"a\", \"b\") a .bvh file holds one, which"},
        {"scene -o old.bvh --order ZXZ", "--order: ZXZ is not X, Y and Z"},
        {"scene -o old.bvh --fps 1e9", "--fps: 1e+09 is not from "},
        {"scene -o old.bvh --fps 0", "--fps: "},
        {"scene -o old.bvh --scale 0", "--scale: "},
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
    EXPECT_TRUE(told.starts_with("Take b: 3 nodes, 4 frames of 0.05 s (0.20 s, from 0.00 s on)\n"))
        << told;
    EXPECT_NE(told.find("\nSaved as new.BVH\n"), std::string::npos) << told;
}

}  // namespace
