#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/end_to_end/command.h"
#include "tests/end_to_end/stage.h"

// A capture that is recorded where a take of its name is, or that is not as it should be: nothing
// of either is lost without a word.

namespace {

// The text with the first place of `from` replaced.
std::string With(std::string text, const std::string& from, const std::string& to) {
    return text.replace(text.find(from), from.size(), to);
}

struct Retake {
    const char* what;
    std::string capture;
    std::string options;
    int status;
    std::size_t nodes;  // in the scene then
    std::size_t keys;
    double keptUntil;                     // behind the last frame; 0 for nothing
    std::vector<std::string> complaints;  // or the line of a refusal, by their parts
};

const std::string kKnee = "JOINT Knee\n{\nOFFSET 0 -0.5 0\nCHANNELS 3 ";

std::vector<Retake> Retakes() {
    const std::string longer = "JOINT Knee\n{\nOFFSET 0 -1 0\nCHANNELS 0\n}\n" + kKnee;
    const std::string root = With(With(Walk(5), "JOINT Knee", "}\nROOT Knee"), "}\n}\n}", "}\n}");
    const std::string shin = With(Walk(5), "Knee", "Shin");
    const std::string notSaved = "take.scene: kept as it was before";
    const std::string over = "again/walk.bvh: written over what the take \"walk\" held of ";
    const std::string other = "the take \"walk\" in the scene is another skeleton (it ";
    const std::string way = "--take names a take of its own, --replace puts the capture in its";
    return {
        {"the same again", Walk(20), "", 0, 3, 40, 0, {over}},
        {"shorter", Walk(10), "", 0, 3, 40, 0.95, {over}},
        {"shorter, nothing left", Walk(10), "--replace", 0, 3, 20, 0, {}},
        {"another name", shin, "", 1, 3, 40, 0, {other + "has \"Knee\" as well); ", way}},
        {"another parent", root, "", 1, 3, 40, 0, {other + "has \"Knee\" below another node); "}},
        {"a joint more",
         With(Walk(5), kKnee, longer),
         "",
         1,
         3,
         40,
         0,
         {other + "has no \"Knee_2\"); "}},
        {"the other's camera", With(Walk(5), "Knee", "Camera"), "", 1, 3, 40, 0, {other}},
        {"another frame time",
         With(Walk(40), "0.05", "0.025"),
         "",
         1,
         3,
         40,
         0,
         {"in the scene has a frame each 0.05 s (the capture each 0.025 s); ", way}},
        {"another skeleton, replaced", shin, "--replace", 0, 3, 10, 0, {}},
        {"another skeleton, beside", shin, "--take other", 0, 6, 50, 0, {}},
        {"one frame more",
         With(Walk(20), "Frames: 20", "Frames: 19"),
         "",
         0,
         3,
         40,
         0,
         {over, "again/walk.bvh: announced frames: 19, there are 20"}},
        {"cut",
         With(Walk(20), "Frames: 20", "Frames: 21"),
         "",
         1,
         3,
         40,
         0,
         {"the file ends after 20 of 21 frames; --partial "}},
        {"cut, and taken",
         With(Walk(20), "Frames: 20", "Frames: 21"),
         "--partial",
         0,
         3,
         40,
         0,
         {over, "announced frames: 21, there are 20"}},
        {"frames on one tick",
         With(Walk(20), "0.05", "0.0001"),
         "--replace",
         1,
         3,
         20,
         0,
         {"10 of 20 frames are at the time of another one", "a joint is 20", notSaved}},
        {"frames beyond all time",
         With(Walk(20), "0.05", "1e30"),
         "--replace",
         1,
         3,
         4,
         0,
         {"18 of 20 frames are at the time of another one", "1 mm tolerated", notSaved}},
    };
}

class RetakeTest : public Command {};

TEST_F(RetakeTest, LosesNothingOfATakeThatIsThereWithoutAWord) {
    const std::string scene = File("take.scene");
    Do("record " + Write("walk.bvh", Walk(20)) + " --scale 1 --scene " + scene);
    const std::string before = Read(scene);
    std::filesystem::create_directory(File("again"));
    for (const Retake& retake : Retakes()) {
        SCOPED_TRACE(retake.what);
        Write("take.scene", before);
        const Ending ending =
            Run("record " + Write("again/walk.bvh", retake.capture) + " --scale 1 --json --into " +
                scene + " --scene " + scene + ' ' + retake.options);
        EXPECT_EQ(ending.status, retake.status) << ending.error;
        EXPECT_TRUE(retake.status == 0 || Read(scene) == before);
        if (ending.out.empty()) {
            for (const std::string& part : retake.complaints)
                EXPECT_NE(ending.error.find(part), std::string::npos) << ending.error;
            continue;
        }
        const auto told = nlohmann::json::parse(ending.out);
        EXPECT_EQ(told["undoSteps"], 1);
        EXPECT_TRUE(told["undoIdentical"] && told["redoIdentical"]);
        EXPECT_EQ(told["nodes"], retake.nodes);
        EXPECT_EQ(told["keys"], retake.keys);
        EXPECT_DOUBLE_EQ(told.value("keptUntilSeconds", 0.0), retake.keptUntil);
        ASSERT_EQ(told["complaints"].size(), retake.complaints.size()) << told["complaints"];
        for (std::size_t i = 0; i < retake.complaints.size(); ++i)
            EXPECT_NE(told["complaints"][i].get<std::string>().find(retake.complaints[i]),
                      std::string::npos)
                << told["complaints"][i];
    }
}

}  // namespace
