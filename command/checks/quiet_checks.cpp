#include <array>

#include "command/checks/checks.h"
#include "headless/scene_view.h"

namespace headless {
namespace {

void Load(CheckStage&) {}

void AttachAgain(CheckStage& stage) {
    stage.Do({"detach", "attach", "detach", "attach"});
}

void LetTimePass(CheckStage& stage) {
    stage.Do({"time 1", "play 0:1", "time 0"});
}

void EmptyTheScene(CheckStage& stage) {
    stage.Do({"new", "reset", "new"});
}

void PressTwice(CheckStage& stage) {
    stage.Press();
    stage.Press();
}

void PressAndPlay(CheckStage& stage) {
    stage.Press();
    stage.Do({"play 0:2", "time 0.5", "time 0"});
}

// A switch has one value, however often it is asked for.
void ExpectSteadySwitches(CheckStage& stage) {
    const std::vector<OptionView> first = stage.Stage().Seat().Options();
    const std::vector<OptionView> second = stage.Stage().Seat().Options();
    for (std::size_t at = 0; at < first.size(); ++at)
        CheckStage::Expect(
            first[at].isKnown == second[at].isKnown && first[at].value == second[at].value,
            "option " + std::to_string(first[at].id) + " answers in two ways");
}

void PressOptions(CheckStage& stage) {
    bool isAnyKnown = false;
    stage.Press();
    ExpectSteadySwitches(stage);
    for (const OptionView& option : stage.Stage().Seat().Options()) {
        isAnyKnown |= option.isKnown;
        if (option.isButton && option.isKnown) stage.Do("option " + std::to_string(option.id));
    }
    if (!isAnyKnown) throw NotApplicable{"it knows none of the adaptor's options"};
    ExpectSteadySwitches(stage);
    stage.Press();
}

// A person's own work is none of its business.
void DrawBesideIt(CheckStage& stage) {
    stage.NeedWork();
    for (const NodeView& node : Nodes())
        stage.Try("select \"" + node.name + '"');
    stage.Do("time 1");
    stage.Press();
}

constexpr auto kQuietChecks = std::to_array<Check>({
    {"loads", 1, "It loads, has the right version, attaches and leaves", &Load},
    {"attaches", 1, "It is detached and attached again, twice", &AttachAgain},
    {"time", 1, "Time passes, and nothing is asked of it", &LetTimePass},
    {"new-scene", 1, "The scene is emptied, and nothing is asked of it", &EmptyTheScene},
    {"press", 3, "Its button is pressed, and pressed again", &PressTwice},
    {"press-and-play", 3, "Its button is pressed, and what came of it is played", &PressAndPlay},
    {"select", 3, "Each of its nodes is selected between two presses", &DrawBesideIt},
    {"options", 3, "The adaptor's options are asked for, and their buttons pressed", &PressOptions},
});

}  // namespace

std::span<const Check> QuietChecks() {
    return kQuietChecks;
}

}  // namespace headless
