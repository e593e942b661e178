#include "tests/end_to_end/command.h"

// Cores of strangers, driven by steps alone.

namespace {

class Run : public Command {
  protected:
    static std::string Quoted(const std::string& path) { return '"' + path + '"'; }

    // What `run` is told: the Core, and each step as an option.
    static std::string Words(const std::string& core, const std::vector<std::string>& steps) {
        std::string words = "run --core " + Quoted(core);
        for (std::string step : steps) {
            for (auto at = step.find('"'); at != std::string::npos; at = step.find('"', at + 2))
                step.insert(at, 1, '\\');
            words += " --do " + Quoted(step);
        }
        return words;
    }

    // As the command tells of them.
    static std::string Whole(const char* core) {
        return platform::ToNarrow(std::filesystem::absolute(core).make_preferred());
    }

    const std::string hello_ = Whole(HELLO_CORE);
    const std::string stray_ = Whole(STRAY_CORE);
};

constexpr char kTour[] =
    "\xEF\xBB\xBF# A life of one ball.\r\n"
    "\r\n"
    "attach   # which it is\r\n"
    "\tpress  1046  \r\n"
    "expect nodes 1\n"
    "expect undo Bounce\n"
    "expect at 0.5 Hello_Ball1 0.5,1,0 1e-5\n"
    "play 0:2:0.5\n"
    "undo\n"
    "expect undo \"\"\n"
    "redo\n"
    "save \"the first.scene\"\n"
    "time 1\n"
    "move Hello_Ball1 1,2,-3\n"
    "expect at 1 Hello_Ball1 1,2,-3\n"
    "undo\n"
    "new\n"
    "expect nodes 0\n"
    "open \"the first.scene\"\n"
    "press \"Start Lumiset\"\n"
    "expect nodes 1\n"
    "merge \"the first.scene\"\n"
    "expect nodes 2\n"
    "select Hello_Ball1\n"
    "delete\n"
    "undo\n"
    "detach\n"
    "press 1046\n"
    "expect box \"Unable to bind\"\n"
    "attach\n"
    "reset\n";

TEST_F(Run, ScriptDrivesAStrangersCoreThroughItsWholeLife) {
    Write("tour", kTour);
    const Json told = Ask("run --script tour --core " + Quoted(hello_));
    for (const Json& step : told["steps"])
        EXPECT_TRUE(step["ok"]) << step.dump(2);
    EXPECT_EQ(told["steps"].size(), 29U);
    for (const char* entry : {"start", "end"})
        EXPECT_EQ(Line(told[entry], {"step", "ok", "boxes", "complaints", "breaches"}),
                  Quoted(entry) + " true [] [] []");
    EXPECT_EQ(Line(told, {"steps/1/undo", "steps/1/nodes", "steps/6/redo", "saved"}),
              R"(["Bounce"] 1 ["Bounce"] ["the first.scene"])");
    EXPECT_NE(told["steps"][25]["boxes"].at(0).get<std::string>().find("Unable to bind"),
              std::string::npos);
    EXPECT_FALSE(told["steps"][24]["trace"].empty());
}

TEST_F(Run, ListsWhatThereIsToPress) {
    const std::string listed = Do("run --core " + Quoted(hello_));
    for (const char* line : {"Core: ", "\n  Button 1046 \"Start Lumiset\": ", "\nOption 1027 \"",
                             "the Core does not know it\n"})
        EXPECT_NE(listed.find(line), std::string::npos) << line << listed;
    EXPECT_EQ(Line(Ask("run"), {"pages/0/buttons/0/id", "options/1/id", "options/1/value",
                                "options/2/button", "options/2/known"}),
              "1046 1027 true true true");
}

// A step of which no word is wrong, and why it fails.
TEST_F(Run, EndsAtTheFirstStepThatFailsAndKeepsWhatWasSavedBefore) {
    const std::vector<std::pair<const char*, const char*>> kFailingSteps = {
        {"press 7", "no page has a button 7 (there are: 1046 \"Start Lumiset\")"},
        {"press Stop", "no page has a button \"Stop\""},
        {"option 1027", "\"Use optimized transform controller\" is a switch"},
        {"option 1028", "the Core has no node for this button"},
        {"option 7", "there is no option 7"},
        {"convert", ""},
        {"time 1e30", "1e+30 s is beyond"},
        {"play 0:1e9:1e-9", "these are more than 1,000,000 moments"},
        {"select Hello_Ball", "no node is called \"Hello_Ball\"; Hello_Ball1 is the nearest"},
        {"select \"the \"\"first\"\" one\"", "no node is called \"the \"first\" one\""},
        {"delete", "nothing is selected"},
        {"undo 2", "there is nothing to undo after 1 step"},
        {"redo", "there is nothing to redo"},
        {"move Nobody 1,2,3", "no node is called \"Nobody\""},
        {"parent Hello_Ball1 Hello_Ball1", "a node cannot hang below itself"},
        {"open nowhere", "nowhere: "},
        {"save nowhere/a", "nowhere/a: "},
        {"expect nodes 2", "the scene has 1 node"},
        {"expect undo Bounc", "\"Bounce\" is undone next"},
        {"expect at 0 Hello_Ball1 0,0.01,0", "it is at 0,"},
        {"expect box \"\"", "no message box says so"}};
    for (const auto& [step, why] : kFailingSteps) {
        const Ending ending = Command::Run(Words(hello_, {"press 1046", "save kept", step, "new"}));
        EXPECT_EQ(ending.status, 1) << step;
        const std::string line = std::string("lumiset-headless: step 3 (") + step + "): " + why;
        EXPECT_TRUE(ending.error.starts_with(line)) << line << '\n' << ending.error;
        EXPECT_EQ(ending.out.find("4. new"), std::string::npos) << ending.out;
        EXPECT_NE(ending.out.find("\nSaved as kept\n"), std::string::npos) << ending.out;
        EXPECT_EQ(Ask("info kept")["nodes"].size(), 1U);
    }
    const Ending ending = Command::Run(
        Words(hello_, {"press 7", "press 1046", "undo 2", "expect nodes 0"}) + " --keep-going");
    EXPECT_EQ(ending.status, 1);
    EXPECT_NE(ending.out.find("\n4. expect nodes 0: done\n"), std::string::npos) << ending.out;
    EXPECT_TRUE(ending.error.starts_with("lumiset-headless: step 1 (press 7): ")) << ending.error;
    EXPECT_NE(ending.error.find("(and 1 step behind it failed)"), std::string::npos);
}

TEST_F(Run, ExpectsAMessageBoxOnce) {
    const Ending ending = Command::Run(
        Words(hello_, {"detach", "press 1046", "expect box Unable", "expect box Unable"}));
    EXPECT_TRUE(ending.error.starts_with("lumiset-headless: step 4 (expect box Unable): no "))
        << ending.error;
}

TEST_F(Run, RefusesEachStepThatCannotBeReadAndDoesNone) {
    const std::vector<std::pair<std::string, std::string>> kUnreadable = {
        {"", "says nothing"},
        {"# nothing", "says nothing"},
        {"pres 1046", "there is no step \"pres\"; press is the nearest"},
        {"expect node 1", "there is no step \"expect node\"; expect nodes is the nearest"},
        {"press", "it lacks what it needs: press ID"},
        {"move A", "it lacks some of what it needs: move NAME X,Y,Z"},
        {"undo 1 2", "\"2\" is more than it takes: undo [N]"},
        {"save \"a", "a quote is not closed"},
        {"save \"a\"b", "a word in quotes is followed by more than a blank"},
        {"save \"\"", "the name of a file is empty"},
        {"press 99999999999", "\"99999999999\" is out of range"},
        {"time nan", "\"nan\" is not a number of seconds"},
        {"time 1e400", "\"1e400\" is out of range"},
        {"play 1:0", "\"1:0\" ends before it starts"},
        {"play 0:1:0", "\"0:1:0\" has no step above 0"},
        {"move A 1,2", "\"1,2\" is not a place X,Y,Z in metres"},
        {"undo -1", "\"-1\" is not a whole number"},
        {"render ./kept", "./kept is the file of "},
        {"render new.jpg", "new.jpg does not end in .png"},
        {"save script", "script is the file of --script too"}};
    Do("draw --sphere 1 -o kept");
    for (const auto& [step, why] : kUnreadable) {
        Write("script", "save done\nopen kept\n\n" + step + '\n');
        if (why != "says nothing")
            ExpectRefusal("run --script script --core " + Quoted(hello_), "", 2);
        const Ending ending = why.find("script") == std::string::npos
                                  ? Command::Run(Words(hello_, {"save done", "open kept", step}))
                                  : Command::Run("run --script script --core " + Quoted(hello_));
        EXPECT_EQ(ending.status, 2) << step;
        EXPECT_NE(ending.error.find(why), std::string::npos) << why << '\n' << ending.error;
        EXPECT_FALSE(std::filesystem::exists(File("done"))) << step;
    }
    Write("script", "attach\r\n\r\n  pres 1046\r\n");
    ExpectRefusal("run --script script", "script:3: step 2 (pres 1046): there is no step", 2);
    ExpectRefusal("run --script absent", "absent: there is no such file", 1);
    ExpectRefusal("run --script .", ".: it is a folder", 1);
    Write("script", "# nothing\n");
    ExpectRefusal("run --script script", "script: there is no step in it", 2);
}

TEST_F(Run, TellsWhyACoreIsNotThere) {
    const std::string puppets = PUPPET_CORES "/";
    const std::vector<std::pair<std::string, std::string>> kAbsent = {
        {"absent.so", "there is no library "},
        {".", ""},
        {Write("text", "no library"), "text cannot be loaded: "},
        {puppets + "without_attach/" CORE_FILE, "exports no routine \"attach\""},
        {puppets + "other_version/" CORE_FILE,
         "has version 8109 of the interface, and the adaptor has version 8108"},
        {puppets + "whole/" CORE_FILE, "refused: its routine attach gave null"}};
    Do("draw --sphere 1 -o drawn");
    for (const auto& [core, why] : kAbsent) {
        for (const char* words :
             {"run --do new", "open drawn", "render drawn --time 0 -o none.png"}) {
            const Ending ending = Command::Run(words + (" --core " + Quoted(core)));
            EXPECT_EQ(ending.status, 1) << words;
            EXPECT_EQ(ending.out, "") << words;
            EXPECT_TRUE(
                ending.error.starts_with("lumiset-headless: the Core could not be attached ("))
                << ending.error;
            EXPECT_NE(ending.error.find(why), std::string::npos) << why << '\n' << ending.error;
        }
    }
}

TEST_F(Run, OtherVerbsWorkWithAStrangersCoreOrNameRun) {
    Write("walk.bvh", Walk(2));
    Do("record walk.bvh -o take");
    const std::string core = " --core " + Quoted(hello_);
    for (const char* words : {"record walk.bvh", "sample take --times 0:0:1", "inspect take",
                              "merge take take -o none"})
        ExpectRefusal(words + core,
                      hello_ +
                          " is not the replay Core, which this needs; "
                          "lumiset-headless run drives any Core",
                      1);
    Do("draw --sphere 1 -o drawn");
    ExpectRefusal("convert drawn -o none" + core, hello_ + ": this Core has no button", 1);
    const Json told = Ask("open take -o again" + core);
    EXPECT_EQ(Line(told, {"nodes", "takes"}), "3 null");
    // What the stranger would not have is kept for the Core that it belongs to.
    EXPECT_EQ(Ask("open again")["takes"].size(), 1U);
}

TEST_F(Run, TellsWhatACoreThrewAndWhatItLeftBehind) {
    isWatched_ = false;
    const Ending ending =
        Command::Run(Words(stray_, {"press 1046", "time 1", "play 2:5:1", "new"}));
    EXPECT_EQ(ending.status, 0) << ending.error;
    for (const char* line :
         {"\n1. press 1046: pressed \"Start Lumiset\"\n",
          "\n  Complaint: the file is odd (line: 7, it was read up to there) (2 times)\n"
          "  Complaint: Exception out of ShowCore: the button is broken\n2. time 1: done\n",
          "\n  Complaint: DEBUG WARNING: Detected duplicated undo groups. Possible undo group "
          "mismatch\n4. new: done\n",
          "\nComplaint: CORE left something behind in the adaptor (undo groups: 5)\n"})
        EXPECT_NE(ending.out.find(line), std::string::npos) << line << ending.out;
    Do("draw --sphere 1 -o drawn");
    EXPECT_EQ(Command::Run("info drawn --core " + Quoted(stray_)).error, "");
    EXPECT_TRUE(
        Command::Run(Words(stray_, {"time 1", "undo"}))
            .error.starts_with("lumiset-headless: step 2 (undo): an undo group is still open"));
    const Ending broken = Command::Run(Words(stray_, {"time 1", "time -1"}));
    EXPECT_EQ(broken.status, 1);
    EXPECT_TRUE(broken.out.ends_with("\n1. time 1: done\n2. time -1: ")) << broken.out;
    EXPECT_EQ(broken.error, "lumiset-headless: the plug-in or its Core has ended the process\n");
}

}  // namespace
