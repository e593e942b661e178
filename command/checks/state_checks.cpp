#include <array>
#include <iostream>

#include "command/checks/checks.h"
#include "command/exit_status.h"
#include "command/output.h"
#include "headless/scene_view.h"
#include "platform/child_process.h"
#include "platform/narrow_path.h"
#include "platform/process.h"

namespace headless {
namespace {

// Undone and redone, what its button did is gone and back.
void UndoAndRedo(CheckStage& stage) {
    const std::uint64_t before = SceneDigest();
    const std::size_t stepsBefore = stage.Host().UndoLabels().size();
    stage.NeedWork();
    const std::uint64_t after = SceneDigest();
    const std::size_t made = stage.Host().UndoLabels().size() - stepsBefore;
    if (made == 0) throw NotApplicable{"its button has made no undo step, or its group is open"};
    stage.Do("undo " + std::to_string(made));
    CheckStage::Expect(SceneDigest() == before, "undone, the scene is not as it was before");
    stage.Do("redo " + std::to_string(made));
    CheckStage::Expect(SceneDigest() == after, "redone, the scene is not as it was then");
    stage.Do({"undo", "redo", "undo"});
    stage.Press();
}

void SaveAndOpen(CheckStage& stage) {
    stage.PressAndSave("a");
    const std::uint64_t saved = SceneDigest();
    stage.Do("new");
    stage.Do("open " + stage.Scene("a"));
    stage.ExpectClaimed();
    CheckStage::Expect(SceneDigest() == saved, "the scene is another one once it is opened");
    stage.Press();
}

// What a person would see in the last line.
std::string LastLineOf(const std::string& text) {
    const std::vector<std::string> lines = LinesOf(text);
    return lines.empty() ? "it says nothing" : lines.back();
}

void OpenInAnotherProcess(CheckStage& stage) {
    stage.PressAndSave("a");
    const std::string log = stage.ScenePath("a") + ".log";
    const platform::ChildEnding ending =
        platform::RunChild({.program = platform::ProgramFile(),
                            .arguments = {"run", platform::WordOfFile(stage.ScenePath("a")),
                                          "--core", platform::WordOfFile(stage.Core()),
                                          "--watch=strict", "--do", "press 1046", "--do", "new"},
                            .output = platform::FromNarrow(log)});
    const std::string said = ToldInto(log);
    std::cerr << said;
    CheckStage::Expect(ending.whyNot.empty(), "another process was " + ending.whyNot);
    CheckStage::Expect(ending.status == kDone, "another process: " + LastLineOf(said));
    CheckStage::Expect(said.find(kMessageBox) == said.npos,
                       "another process: nodes of the scene were not claimed");
    stage.Press();  // which takes what the other one has left in the trace
}

void Merge(CheckStage& stage) {
    stage.PressAndSave("a");
    stage.Do("new");
    stage.Do("merge " + stage.Scene("a"));
    stage.ExpectClaimed();
    stage.Press();
    stage.Do("merge " + stage.Scene("a"));
    stage.ExpectClaimed();
    stage.Press();
}

void AttachLate(CheckStage& stage) {
    stage.PressAndSave("a");
    stage.Do({"detach", "new"});
    stage.Do("open " + stage.Scene("a"));
    stage.Do("attach");
    stage.ExpectClaimed();
    stage.Press();
}

void LeaveAndComeBack(CheckStage& stage) {
    stage.NeedWork();
    stage.Do({"detach", "time 1", "attach"});
    stage.ExpectClaimed();
    stage.Press();
}

void TwoScenes(CheckStage& stage) {
    stage.PressAndSave("a");
    stage.Do("new");
    stage.Press();
    stage.Press();
    stage.Do("save " + stage.Scene("b"));
    for (const char* const scene : {"a", "b", "b", "a"})
        stage.Do("open " + stage.Scene(scene));
    stage.ExpectClaimed();
    stage.Press();
}

void SaveAgain(CheckStage& stage) {
    stage.PressAndSave("a");
    for (const char* const next : {"b", "c"}) {
        stage.Do("save " + stage.Scene(next));
        stage.Do("open " + stage.Scene(next));
    }
    stage.ExpectClaimed();
    stage.Press();
}

constexpr auto kStateChecks = std::to_array<Check>({
    {"undo", 5, "What its button did is undone and redone, to the same scene", &UndoAndRedo},
    {"open", 5, "The scene is saved and opened, and is the same", &SaveAndOpen},
    {"another-process", 5, "Another process opens the scene, and presses its button",
     &OpenInAnotherProcess},
    {"merge", 5, "Its nodes come by two merges", &Merge},
    {"late-attach", 5, "It is attached to a scene that was opened without it", &AttachLate},
    {"comes-back", 5, "It is detached from its nodes, and attached again", &LeaveAndComeBack},
    {"two-scenes", 5, "Two scenes are opened in turn", &TwoScenes},
    {"saved-again", 5, "The scene is saved, opened and saved, again and again", &SaveAgain},
});

}  // namespace

std::span<const Check> StateChecks() {
    return kStateChecks;
}

}  // namespace headless
