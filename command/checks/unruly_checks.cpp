#include <array>

#include "command/checks/checks.h"
#include "command/output.h"
#include "headless/scene_view.h"

namespace headless {
namespace {

void SelectAll(CheckStage& stage) {
    std::vector<std::string> names;
    for (const NodeView& node : Nodes())
        names.push_back(node.name);
    stage.Host().Select(names);
}

// What its button did stands, or goes on if its work runs along with time.
void Begin(CheckStage& stage) {
    stage.NeedWork();
    stage.Do("time 0.5");
}

void UndoInATake(CheckStage& stage) {
    Begin(stage);
    for (const char* const step : {"undo", "time 1", "undo", "redo", "time 0", "redo", "undo"})
        stage.Try(step);
    stage.Press();
}

void DeleteInATake(CheckStage& stage) {
    Begin(stage);
    SelectAll(stage);
    stage.Try("delete");
    stage.Do("time 1");
    stage.Press();
    for (const char* const step : {"undo", "undo", "time 0", "redo", "redo"})
        stage.Try(step);
    stage.Press();
}

void DetachInATake(CheckStage& stage) {
    Begin(stage);
    stage.Do({"detach", "time 1"});
    for (const char* const step : {"undo", "redo", "undo"})
        stage.Try(step);
    stage.Do("attach");
    stage.Press();
}

void OpenInATake(CheckStage& stage) {
    stage.PressAndSave("a");
    stage.Do("new");
    Begin(stage);
    stage.Do("open " + stage.Scene("a"));
    stage.Do("time 1");
    stage.Press();
    stage.Do({"time 0.5", "new", "time 1"});
    stage.Press();
    stage.Do("reset");
}

void SaveInATake(CheckStage& stage) {
    Begin(stage);
    stage.Do("save " + stage.Scene("a"));
    stage.Do("time 1");
    stage.Do("save " + stage.Scene("b"));
    stage.Do("merge " + stage.Scene("a"));
    stage.Do("open " + stage.Scene("b"));
    stage.Press();
}

void WithoutItsNodes(CheckStage& stage) {
    stage.NeedWork();
    SelectAll(stage);
    if (!stage.Try("delete")) throw NotApplicable{"nothing of it can be deleted"};
    CheckStage::Expect(Nodes().empty(), "nodes that a person deletes are there still");
    stage.Do("time 1");
    stage.Do("save " + stage.Scene("a"));
    stage.Press();
    stage.Do("open " + stage.Scene("a"));
    stage.Press();
}

void FarAway(CheckStage& stage) {
    for (const char* const time : {"time 100000", "time -1000", "time 0.0001"}) {
        stage.Do(time);
        stage.Press();
    }
    stage.Try("undo");
    stage.Do("time 0");
}

// Edits beside and on what it has made.
void EditItsNodes(CheckStage& stage) {
    stage.NeedWork();
    const std::vector<NodeView> nodes = Nodes();
    for (const NodeView& node : nodes) {
        stage.Host().MoveNode(node.handle, Point3(1, 2, 3));
        stage.Host().LinkNode(node.handle, nodes.front().handle);
    }
    stage.Do("time 1");
    stage.Press();
    while (!stage.Host().UndoLabels().empty() && stage.Try("undo")) {
    }
    stage.Press();
}

// Files that the host refuses, with all that it tells then.
void RefusedFiles(CheckStage& stage) {
    stage.Press();
    for (const std::string step : {"open ", "merge "})
        stage.Try(step + stage.Scene("there-is-none"));
    stage.Try("save " + stage.Scene("no-folder/a"));
    stage.Press();
}

constexpr auto kUnrulyChecks = std::to_array<Check>({
    {"undo-in-a-take", 7, "A person undoes and redoes right behind its button", &UndoInATake},
    {"delete-in-a-take", 7, "A person deletes its nodes, and undoes that", &DeleteInATake},
    {"detach-in-a-take", 7, "It is detached, and its steps are undone without it", &DetachInATake},
    {"open-in-a-take", 7, "Other scenes are opened", &OpenInATake},
    {"save-in-a-take", 7, "The scene is saved, merged and opened", &SaveInATake},
    {"without-nodes", 7, "All nodes are deleted, and its button is pressed", &WithoutItsNodes},
    {"far-away", 7, "Its button is pressed at times that are far away", &FarAway},
    {"edited", 7, "A person moves and links its nodes, and undoes everything", &EditItsNodes},
    {"refused-files", 7, "Files cannot be opened, merged and saved", &RefusedFiles},
});

}  // namespace

std::span<const Check> UnrulyChecks() {
    return kUnrulyChecks;
}

}  // namespace headless
