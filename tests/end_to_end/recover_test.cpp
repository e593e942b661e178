#include "tests/end_to_end/command.h"
#include "tests/support/newest_segment.h"

namespace {

class Recover : public Command {
  protected:
    // Has the first Core work on a tape, whose end never comes.
    void Work(const std::string& tape, const std::string& steps) const {
        Do("run --core \"" + hello_ + "\" --tape " + tape + steps);
        std::string bytes = Read(tape);
        constexpr std::size_t kAnswer = 32;  // bytes; that to `detach` is the last record
        const std::size_t end = NewestSegment(bytes).end;
        bytes.replace(end - kAnswer, kAnswer, kAnswer, '\0');
        Write(tape, bytes);
    }

    std::string Opened(const std::string& scene) const {
        const Json opened = Ask("open " + scene + " --core \"" + hello_ + '"');
        return opened["boxes"].dump() + opened["complaints"].dump();
    }

    const std::string hello_ =
        platform::ToNarrow(std::filesystem::absolute(HELLO_CORE).make_preferred());
};

TEST_F(Recover, BringsBackWhatNoSceneWasSavedWith_AndLeavesWhatThereIs) {
    Work("ball.tape", " --do \"press 1046\" --do \"save ball.scene\" --do \"press 1046\"");
    EXPECT_NE(Opened("ball.scene")
                  .find("lumiset-headless recover ball.tape -o NEW.scene --into ball.scene"),
              std::string::npos);
    auto before = Files();
    const Json told = Ask("recover ball.tape --into ball.scene -o new.scene");
    EXPECT_EQ(told["step"], "Recovered \"Bounce\"");
    EXPECT_EQ(told["recovered"].size(), 1U);
    EXPECT_EQ(Line(told["recovered"][0], {"name", "fate", "samples", "moments"}),
              R"("Bounce" "finished" 61 61)");
    for (const char* none : {"left", "replaced", "lost", "plainNodes", "boxes", "complaints"})
        EXPECT_EQ(told[none].size(), 0U) << none;
    before["new.scene"] = Read("new.scene");
    EXPECT_EQ(Files(), before);
    Do("diff ball.scene new.scene");
    EXPECT_EQ(Opened("new.scene"), "[][]");

    Do("draw --sphere 2 -o other.scene");
    for (const char* moment : {"--after 1 (", "saved ball.scene)"})
        EXPECT_NE(ExpectRefusal("recover ball.tape --into other.scene -o no.scene",
                                "ball.tape: it cannot be told up to where other.scene has", 1)
                      .find(moment),
                  std::string::npos);
    ExpectRefusal("recover ball.tape --into ball.scene -o ball.scene", "--output: ball.scene", 2);
    ExpectRefusal("recover ball.tape --session 2 -o no.scene", "--session: 2 is not from 1 to 1",
                  2);
    ExpectRefusal("recover ball.tape --after -5 -o no.scene", "--after: -5 is not from 0", 2);
    ExpectRefusal("recover ball.tape --after 999999 -o no.scene", "ball.tape: there is no call", 1);

    // What is told can be typed as it stands, also where the tape has been gone on with.
    Write("my ball.tape", Read("ball.tape"));
    const std::string word =
        Ask("open ball.scene --core \"" + hello_ + "\" --tape \"my ball.tape\"")["complaints"][0];
    Do(word.substr(word.find("recover ")));
    EXPECT_EQ(Read("NEW.scene"), Read("new.scene"));
}

// As of a tape that was gone on with after a crash.
TEST_F(Recover, BringsInTheWorkOfOneSession_AndSaysHowToBringInTheOthers) {
    Work("ball.tape", " --do \"press 1046\"");
    Work("ball.tape", " --do \"press 1046\"");
    const Json told = Ask("recover ball.tape -o one.scene");
    EXPECT_EQ(Line(told, {"session", "step"}), "2 \"Recovered \\\"Bounce\\\"\"");
    ASSERT_EQ(told["others"].size(), 1U) << told;
    const std::string command = told["others"][0]["command"];
    EXPECT_NE(command.find("--into one.scene --after 1 --session 1"), std::string::npos) << command;
    EXPECT_NE(Do(command.substr(command.find("recover "))).find("NEW.scene"), std::string::npos);
    EXPECT_EQ(Ask("info NEW.scene")["nodes"].size(), 2U);

    // State that comes with a merge into the first scene is not that of a scene before.
    Do("run --core \"" + hello_ + "\" --do \"press 1046\" --do \"save ball.scene\"");
    Work("merged.tape", " --do \"merge ball.scene\" --do \"press 1046\"");
    EXPECT_EQ(Ask("recover merged.tape -o merged.scene")["lost"][0], "merged by hand: ball.scene");
}

TEST_F(Recover, TellsOfNodesThatNoStateNames_AndOfKeysInTheWay) {
    Work("ball.tape", " --do \"press 1046\" --do undo --do \"press 1046\"");
    Json told = Ask("recover ball.tape -o new.scene");
    EXPECT_EQ(told["plainNodes"].dump(), "[\"Hello_Ball2\"]");
    EXPECT_EQ(told["left"].size(), 1U);
    EXPECT_EQ(told["left"][0]["fate"], "undone");
    EXPECT_NE(Do("info new.scene").find("Tarvo Transform control  61"), std::string::npos);
    EXPECT_EQ(Opened("new.scene"), "[][]");

    Work("again.tape", " --do \"press 1046\" --do \"save ball.scene\" --do \"press 1046\"");
    Do("run ball.scene --core \"" + hello_ + "\" --do \"time 1\" --do \"save later.scene\"");
    const std::string base = Ask("recover again.tape --into ball.scene -o new.scene")["base"];
    told = Ask("recover again.tape --into later.scene -o new.scene " +
               base.substr(0, base.find(" (")));
    EXPECT_EQ(told["replaced"].size(), 1U);
    EXPECT_NE(told["replaced"].dump().find("Hello_Ball1"), std::string::npos) << told;
}

}  // namespace
