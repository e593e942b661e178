#include "platform/modules.h"
#include "tests/end_to_end/command.h"

// A tape that is played again: what it needs beside it, and where it says that it cannot.

namespace {

namespace fs = std::filesystem;

class Replay : public Command {
  protected:
    void SetUp() override { isWatched_ = false; }

    static std::string Quoted(const std::string& path) { return '"' + path + '"'; }

    // Hello by itself, or behind the loadable recorder, which knows nothing of the host.
    std::string RunHello(const std::vector<std::string>& steps) const {
        std::string words = "run --core " + Quoted(hello_) + " --tape hello.tape";
        for (const std::string& step : steps)
            words += " --do " + Quoted(step);
        return words;
    }
    std::string RunHelloAtVendors(const std::vector<std::string>& steps) const {
        const fs::path folder = folder_.Path() / "vendor";
        fs::remove_all(folder);
        fs::create_directories(folder);
        const fs::path library = folder / fs::path(RECORDER_MODULE).filename();
        const std::string real = platform::ModuleFile("real");
        fs::copy_file(RECORDER_MODULE, library);
        fs::copy_file(HELLO_CORE, folder / real);
        Write("vendor/recorder.txt", "core = " + real + "\ntape = ../hello.tape\n");
        std::string words = "run --core " + Quoted(platform::ToNarrow(library));
        for (const std::string& step : steps)
            words += " --do " + Quoted(step);
        return words;
    }

    Json Replayed(int status) const {
        const Ending ending = Command::Run("tape replay hello.tape --json");
        EXPECT_EQ(ending.status, status) << ending.out << ending.error;
        return Json::parse(ending.out);
    }

    const std::string hello_ = platform::ToNarrow(fs::absolute(HELLO_CORE));
};

TEST_F(Replay, SavesAndOpensTheScenesOfTheTapeElsewhere) {
    Do(RunHello({"press 1046", "save a.scene", "new", "press 1046", "undo", "open a.scene",
                 "merge a.scene", "detach", "attach", "save a.scene", "press 1046"}));
    fs::remove(File("a.scene"));
    EXPECT_EQ(Line(Replayed(0), {"same", "sessions"}), "true 2");
    EXPECT_FALSE(fs::exists(File("a.scene")));
    EXPECT_EQ(Line(Json::parse(Do("tape replay hello.tape --session 1 --json")), {"sessions"}),
              "2");  // of one host
    ExpectRefusal("tape replay hello.tape --session 3", "--session: 3 is not from 1 to 2", 2);
    ExpectRefusal("tape replay a.tape", "a.tape: ", 2);
    ExpectRefusal("tape replay hello.tape --plugin hello.tape", "hello.tape", 2);
}

TEST_F(Replay, FindsASceneByItsDigestOrInTheTape) {
    Do("draw --path \"0,0,0 90,40,0\" -o path.scene");
    const std::vector<std::string> steps = {"open path.scene", "press 1046"};
    Do(RunHello(steps));
    Replayed(0);
    fs::rename(File("path.scene"), File("kept.scene"));
    Replayed(0);
    fs::remove(File("kept.scene"));
    Do("draw --path \"0,0,0 9,4,0\" -o path.scene");
    EXPECT_EQ(Line(Replayed(2), {"differs", "calls"}), "false 4");
    fs::remove(File("hello.tape"));
    Do("draw --path \"0,0,0 90,40,0\" -o path.scene");
    Do(RunHello(steps) + " --with-scenes");
    fs::remove(File("path.scene"));
    Replayed(0);
}

TEST_F(Replay, TellsTheFirstAnswerThatDiffersAndWhatItCannotTell) {
    // Times that are no whole ticks once they are told are the same ones again.
    Do(RunHelloAtVendors({"press 1046", "play 2:2.1:0.05"}));
    Replayed(0);
    fs::remove(File("hello.tape"));

    // Of what the user does to a node the Core hears nothing until it looks.
    Do(RunHelloAtVendors({"press 1046", "move Hello_Ball1 1,2,3", "press 1046"}));
    const Json moved = Replayed(1);
    EXPECT_EQ(moved["steps"], Json({"press 1046  (inferred)", "press 1046  (inferred)"}));
    EXPECT_NE(moved["line"].get<std::string>().find("Ball1.GetWorldTransform()"),
              std::string::npos);
    EXPECT_NE(moved["expected"].get<std::string>().find("; 0.99999"), std::string::npos);
    EXPECT_NE(moved["came"].get<std::string>().find("; 0 "), std::string::npos) << moved["came"];
    fs::remove(File("hello.tape"));

    Do("draw --path \"0,0,0 90,40,0\" -o path.scene");
    Do(RunHelloAtVendors({"press 1046", "merge path.scene"}));
    EXPECT_EQ(Line(Replayed(2), {"differs", "reason"}),
              "false \"a scene was merged, and the tape does not tell which\"");
    fs::remove(File("hello.tape"));

    Write("walk.bvh", Walk(5));
    Do("record walk.bvh --ground --tape hello.tape");
    EXPECT_EQ(Line(Replayed(2), {"differs", "reason"}), "false \"a ground was drawn\"");
}

TEST_F(Replay, HasTheSettingsOfTheTapesHost_AsARecoveryHas) {
    Write("walk.bvh", Walk(5));
    Do("record walk.bvh --units 7 -o walk.scene --tape hello.tape");
    Replayed(0);
    Do("recover hello.tape -o new.scene --after 1");
    Do("diff walk.scene new.scene");
}

}  // namespace
