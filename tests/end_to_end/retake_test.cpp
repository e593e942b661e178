#include <filesystem>
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

struct Outcome {
    int status = 0;
    std::size_t nodes = 3;  // in the scene then
    std::size_t keys = 40;
    double keptUntil = 0;  // behind the last frame; 0 for nothing
};

struct Retake {
    std::string capture;
    std::string options;
    Outcome outcome;
    std::vector<std::string> complaints;  // or the line of a refusal, by their parts
};

std::vector<Retake> Retakes() {
    const std::string walk = Walk(20);
    const std::string knee = "JOINT Knee\n{\nOFFSET 0 -0.5 0\nCHANNELS 3 ";
    const std::string twoKnees = "JOINT Knee\n{\nOFFSET 0 -1 0\nCHANNELS 0\n}\n" + knee;
    const std::string root = With(With(Walk(5), "JOINT Knee", "}\nROOT Knee"), "}\n}\n}", "}\n}");
    const std::string shin = With(Walk(5), "Knee", "Shin");
    const std::string cut = With(walk, "Frames: 20", "Frames: 21");
    std::string higher = Walk(10);
    for (std::size_t at = 0; (at = higher.find(" 1 0 0 0 ", at)) != std::string::npos;)
        higher.replace(at, 3, " 2 ");
    const std::string kept = "take.scene: kept as it was before";
    const std::string over = "again/walk.bvh: written over what the take \"walk\" held of ";
    const std::string other = "the take \"walk\" in the scene is another skeleton (it ";
    const std::string way = "--take names a take of its own, --replace puts the capture in its";
    const std::string lost = " of 20 frames are at the time of another one";
    const Outcome refused{.status = 1};
    return {
        {walk, "", {}, {over}},
        {higher, "", {.keptUntil = 0.95}, {over}},
        {Walk(10), "--replace", {.keys = 20}, {}},
        {shin, "", refused, {other + "has \"Knee\" as well); ", way}},
        {root, "", refused, {other + "has \"Knee\" below another node); "}},
        {With(Walk(5), knee, twoKnees), "", refused, {other + "has no \"Knee_2\"); "}},
        {With(Walk(5), "Knee", "Camera"), "", refused, {other}},
        {With(Walk(40), "0.05", "0.025"),
         "",
         refused,
         {"in the scene has a frame each 0.05 s (the capture each 0.025 s); ", way}},
        {shin, "--replace", {.keys = 10}, {}},
        {shin, "--take other", {.nodes = 6, .keys = 50}, {}},
        {With(walk, "Frames: 20", "Frames: 19"),
         "",
         {},
         {over, "again/walk.bvh: announced frames: 19, there are 20"}},
        {cut, "", refused, {"the file ends after 20 of 21 frames; --partial "}},
        {cut, "--partial", {}, {over, "announced frames: 21, there are 20"}},
        {With(walk, "0.05", "0.0001"),
         "--replace",
         {.status = 1, .keys = 20},
         {"10" + lost, "a joint is 20", kept}},
        {With(walk, "0.05", "1e30"),
         "--replace",
         {.status = 1, .keys = 4},
         {"18" + lost, "1 mm tolerated", kept}},
    };
}

TEST_F(Command, LosesNothingOfATakeThatIsThereWithoutAWord) {
    Write("walk.bvh", Walk(20));
    Do("record walk.bvh --scale 1 --scene take.scene");
    const std::string before = Read("take.scene");
    std::filesystem::create_directory(File("again"));
    for (const auto& [capture, options, outcome, complaints] : Retakes()) {
        SCOPED_TRACE(capture + options);
        Write("take.scene", before);
        Write("again/walk.bvh", capture);
        const Ending ending =
            Run("record again/walk.bvh --scale 1 --json --into take.scene --scene take.scene " +
                options);
        EXPECT_EQ(ending.status, outcome.status) << ending.error;
        EXPECT_TRUE(outcome.status == 0 || Read("take.scene") == before);
        std::string said = ending.error;
        if (!ending.out.empty()) {
            const Json told = Json::parse(ending.out);
            EXPECT_EQ(Line(told, {"undoSteps", "undoIdentical", "redoIdentical"}), "1 true true");
            EXPECT_TRUE(outcome.status == 1 || told["maxPositionErrorMetres"] < 1e-4) << told;
            EXPECT_EQ(told["nodes"], outcome.nodes);
            EXPECT_EQ(told["keys"], outcome.keys);
            EXPECT_DOUBLE_EQ(told.value("keptUntilSeconds", 0.0), outcome.keptUntil);
            EXPECT_EQ(told["complaints"].size(), complaints.size());
            for (const std::string complaint : told["complaints"])
                said += complaint + '\n';
        }
        for (const std::string& part : complaints)
            EXPECT_NE(said.find(part), std::string::npos) << said;
    }
}

}  // namespace
