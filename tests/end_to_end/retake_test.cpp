#include "tests/end_to_end/command.h"

// A capture that is recorded where a take of its name is, or that is not as it should be: nothing
// of either is lost without a word.

namespace {

struct Retake {
    std::string capture;
    std::string options;
    std::vector<std::string> complaints;  // or the line of a refusal, by their parts
    int status = 0;
    std::size_t nodes = 3;  // in the scene then
    std::size_t keys = 40;
    double keptUntil = 0;  // behind the last frame; 0 for nothing
};

std::vector<Retake> Retakes() {
    const std::string walk = Walk(20);
    const std::string root = With(With(Walk(5), "JOINT Knee", "}\nROOT Knee"), "}\n}\n}", "}\n}");
    const std::string shin = With(Walk(5), "Knee", "Shin");
    const std::string cut = With(walk, "Frames: 20", "Frames: 21");
    const std::string finer = With(Walk(40), "0.05", "0.025");
    const std::string dense = With(walk, "0.05", "0.0001");
    const std::string kept = "take.scene: kept as it was before";
    const std::string higher = With(Walk(10), "0.900000 1 ", "0.900000 2 ");
    const std::string over = "again/walk.bvh: written over what the take \"walk\" held of ";
    const std::string other =
        "the take \"walk\" in the scene is another skeleton (it has \"Knee\" ";
    const std::string way = "--take names a take of its own, --replace puts the capture in its";
    return {{walk, "", {over}},
            {higher, "", {over}, 0, 3, 40, 0.95},
            {higher, "--replace", {}, 0, 3, 20},
            {shin, "", {other + "as well); ", way}, 1},
            {shin, "--replace", {}, 0, 3, 10},
            {shin, "--take other", {}, 0, 6, 50},
            {root, "", {other + "below another node); "}, 1},
            // Three of thirteen frames meet keys that are there.
            {walk, "--from 7 --start 0.85", {over}, 0, 3, 60},
            {walk, "--start 1", {}, 0, 3, 80},
            {walk, "--start 0.3125", {"has its frames 0.0125 s beside those of the c", way}, 1},
            {finer, "", {"has a frame each 0.05 s (the capture each 0.025 s); ", way}, 1},
            {cut, "", {"the file ends after 20 of 21 frames; --partial "}, 1},
            {cut, "--partial", {over, "announced frames: 21, there are 20"}},
            {dense, "--replace", {"10 of 20 frames have no", "a joint is 20", kept}, 1, 3, 20},
            {walk, "--replace --to 0 --start 1e6", {"1 of 1 frames have no time", kept}, 1, 3, 2}};
}

TEST_F(Command, LosesNothingOfATakeThatIsThereWithoutAWord) {
    Write("walk.bvh", Walk(20));
    Do("record walk.bvh --scale 1 --scene take.scene");
    const std::string before = Read("take.scene");
    std::filesystem::create_directory(File("again"));
    for (const Retake& retake : Retakes()) {
        SCOPED_TRACE(retake.capture + retake.options);
        Write("take.scene", before);
        Write("again/walk.bvh", retake.capture);
        const Ending ending =
            Run("record again/walk.bvh --scale 1 --json --into take.scene --scene take.scene " +
                retake.options);
        EXPECT_EQ(ending.status, retake.status) << ending.error;
        EXPECT_TRUE(retake.status == 0 || Read("take.scene") == before);
        std::string said = ending.error;
        if (!ending.out.empty()) {
            const Json told = Json::parse(ending.out);
            EXPECT_EQ(Line(told, {"undoSteps", "undoIdentical", "redoIdentical"}), "1 true true");
            EXPECT_TRUE(retake.status == 1 || told["maxPositionErrorMetres"] < 1e-4) << told;
            EXPECT_EQ(told["nodes"], retake.nodes);
            EXPECT_EQ(told["keys"], retake.keys);
            EXPECT_DOUBLE_EQ(told.value("keptUntilSeconds", 0.0), retake.keptUntil);
            EXPECT_EQ(told["complaints"].size(), retake.complaints.size());
            for (const std::string complaint : told["complaints"])
                said += complaint + '\n';
        }
        for (const std::string& part : retake.complaints)
            EXPECT_NE(said.find(part), std::string::npos) << said;
    }
}

}  // namespace
