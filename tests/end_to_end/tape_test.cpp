#include "platform/process.h"
#include "recorder/tape/segments.h"
#include "tests/end_to_end/command.h"
#include "tests/support/mistakes/mistakes.h"

// What the command tells of a tape.

namespace {

class TapeVerbs : public Command {
  protected:
    TapeVerbs() {
        Write("walk.bvh", Walk(5));
        Do("record walk.bvh -o walk.scene --tape walk.tape");
    }
};

TEST_F(TapeVerbs, TellWhatWasRecordedAndWhatIsInNoScene) {
    const Json info = Ask("tape info walk.tape");
    EXPECT_EQ(Line(info["sessions"][0], {"isClosed", "isWhole", "unanswered", "undoGroups", "takes",
                                         "undoGroupsInNoScene"}),
              "true true 0 1 1 0");
    EXPECT_EQ(Line(info["sessions"][0]["scenes"][0], {"what", "path"}), "\"saved\" \"walk.scene\"");
    EXPECT_EQ(info["damages"], Json::array());
    const std::string lines = Do("tape info walk.tape");
    EXPECT_NE(lines.find("1 undo group, 1 take"), std::string::npos) << lines;
    EXPECT_EQ(lines.find("In no scene"), std::string::npos) << lines;
    Do("run --core \"" + std::string(HELLO_CORE) +
       "\" --tape ball.tape --do \"press 1046\" --do \"merge walk.scene\"");
    EXPECT_EQ(Ask("tape info ball.tape")["sessions"][0]["undoGroupsInNoScene"], 1);
    ExpectRefusal("tape info walk.bvh", "walk.bvh: it is no tape", 1);
    Write("blank.tape", std::string(4'096, '\0'));
    EXPECT_EQ(Do("tape info blank.tape"),
              "blank.tape: 0 sessions, 4096 bytes\n"
              "Nothing has been recorded to it; --tape goes on with it\n");
    ExpectRefusal("tape print blank.tape", "blank.tape: there is nothing on it", 1);
    ExpectRefusal("tape info nothing.tape", "nothing.tape: there is no such file", 1);
    ExpectRefusal("tape", "a verb is missing behind tape", 2);
    ExpectRefusal("tape inf walk.tape", "there is no verb \"tape inf\"; tape info", 2);
}

TEST_F(TapeVerbs, PrintCallsInLines) {
    const auto count = [](const std::string& text, const std::string& part) {
        std::size_t found = 0;
        for (std::size_t at = 0; (at = text.find(part, at)) != std::string::npos; at += part.size())
            ++found;
        return found;
    };
    const std::string all = Do("tape print walk.tape");
    EXPECT_NE(all.find("  adaptor.BeginUndoGroup(\"Record walk\") = 0\n"), std::string::npos);
    EXPECT_NE(all.find("    Core.GetOptionValue("), std::string::npos);  // in a call
    EXPECT_NE(all.find(".OnNodeRestored(Hip)\n"), std::string::npos);
    const std::string poses =
        Do("tape print walk.tape --session 1 --operation SetWorldTransform --node Hip");
    EXPECT_EQ(count(poses, " of Hip.SetWorldTransform(["), 5U) << poses;
    EXPECT_EQ(count(poses, "\n"), 3 + count(poses, "SetWorldTransform")) << poses;
    const Ending none = Run("tape print walk.tape --from 1000");
    EXPECT_TRUE(none.status == 1 && count(none.out, "\n") == 3 &&
                none.error.ends_with("walk.tape: nothing on it is what was asked for\n"))
        << none.error;
    const std::string json =
        Do("tape print walk.tape --json --operation SetWorldTransform --node Hip");
    const Json first = Json::parse(json.substr(0, json.find('\n')));
    EXPECT_EQ(first["operation"], "CSnapshot::SetWorldTransform");
    EXPECT_EQ(first["said"][0].size(), 4U);
    ExpectRefusal("tape print walk.tape --session 2", "--session: 2 is not from 1 to 1", 2);
    ExpectRefusal("tape print walk.tape --operation Setname", "there is no operation \"Setname\"",
                  2);
}

TEST_F(TapeVerbs, TellWhereTwoDiffer) {
    Do("record walk.bvh -o again.scene --tape again.tape");
    EXPECT_EQ(Do("tape diff walk.tape again.tape"), "");
    Write("walk.bvh", Walk(6));
    Do("record walk.bvh -o longer.scene --tape longer.tape");
    const Ending longer = Run("tape diff walk.tape longer.tape");
    EXPECT_EQ(longer.status, 1);
    EXPECT_NE(longer.out.find("\nlonger.tape: "), std::string::npos) << longer.out;
    ExpectRefusal("tape diff walk.tape walk.bvh", "walk.bvh: it is no tape", 2);

    // What is damaged is told wherever the tape is read, and accuses nobody.
    std::string hurt = Read("walk.tape");
    hurt[hurt.find("Record walk")] ^= 1;
    Write("hurt.tape", hurt);
    const Ending damaged = Run("tape diff walk.tape hurt.tape");
    EXPECT_NE(damaged.out.find("\nhurt.tape: the end of BeginUndoGroup"), std::string::npos)
        << damaged.out;
    EXPECT_TRUE(damaged.error.starts_with("Complaint: hurt.tape: at byte ")) << damaged.error;
    EXPECT_EQ(Run("tape replay hurt.tape").status, 2);
}

TEST_F(TapeVerbs, HoldCallsAgainstTheContractAfterwards) {
    EXPECT_EQ(Do("tape watch walk.tape"), "");
    platform::SetVariable(mistakes::kVariable, "keeps a snapshot");
    isWatched_ = false;
    Do("run --core \"" + std::string(MISTAKES_CORE) + "\" --tape walk.tape --do \"press 1046\"");
    platform::SetVariable(mistakes::kVariable, "");
    const Ending watched = Run("tape watch walk.tape");
    EXPECT_EQ(watched.status, 1);
    const char kLine[] = "Session 2:\nsnapshot-not-given-back: AcquireSnapshot on Spare, once, at ";
    EXPECT_TRUE(watched.out.starts_with(kLine)) << watched.out;
    const Json findings = Json::parse(Run("tape watch walk.tape --json").out)["findings"];
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(Line(findings[0], {"rule", "node", "session"}),
              "\"snapshot-not-given-back\" \"Spare\" 2");
    ExpectRefusal("tape watch walk.bvh", "walk.bvh: it is no tape", 2);
}

// Steps, trees, and records that no segment has room for have names, too.
TEST_F(TapeVerbs, LeaveNoNameOnATapeThatIsSentAway) {
    const std::string knee = "LeftKneeJoint";  // so long that no drawn letters come upon it
    Write("walk.bvh", With(Walk(4000), "Knee", knee));
    Do("record walk.bvh -o walk.scene");
    Do("run walk.scene --tape walk.tape --with-scenes --do \"move walk_" + knee +
       " 1,2,3\" --do "
       "\"save walk.scene\"");
    ASSERT_GT(Read("walk.scene").size(), recorder::kNewSegment);
    Do("tape anonymise walk.tape -o sent.tape");
    const std::string sent = Read("sent.tape");
    EXPECT_EQ(sent.size(), Read("walk.tape").size());
    ASSERT_NE(Read("walk.tape").find(knee), std::string::npos);
    const std::string plugin("walk\0\0\0\0", 8);  // as a text of a tree
    for (const std::string& name :
         {knee, std::string("Record walk"), plugin, std::string(CORE_FOLDER)})
        EXPECT_EQ(sent.find(name), std::string::npos) << name;
    const Json info = Ask("tape info walk.tape");
    const Json other = Ask("tape info sent.tape");
    for (const char* kept : {"calls", "undoGroups", "isWhole", "isClosed", "moment", "platform"})
        EXPECT_EQ(info["sessions"][0][kept], other["sessions"][0][kept]) << kept;
    EXPECT_EQ(other["damages"], Json::array());
    const Json apart = Json::parse(Run("tape diff walk.tape sent.tape --json").out);
    EXPECT_NE(apart["first"], apart["second"]);
    EXPECT_EQ(Run("tape print sent.tape --node Knee").status, 1);
    Do("run --core \"" + std::string(HELLO_CORE) +
       "\" --tape ball.tape --do \"press 1046\" --do \"expect nodes 1\" --do \"time 1\"");
    Do("tape anonymise ball.tape -o sent.tape");
    Do("tape replay sent.tape");
    ExpectRefusal("tape anonymise walk.tape -o walk.tape", "", 2);
}

}  // namespace
