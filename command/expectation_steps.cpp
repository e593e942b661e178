#include <algorithm>
#include <array>

#include "command/exit_status.h"
#include "command/output.h"
#include "command/steps.h"
#include "command/wrong_words.h"

// Steps that change nothing, and fail where something is otherwise than it was expected.
namespace headless {
namespace {

std::string ExpectNodes(StepScene&, const StepWords& words) {
    const std::size_t count = Nodes().size();
    if (count != words.count) throw Failure("the scene has " + Counted(count, "node"));
    return {};
}

std::string ExpectUndo(StepScene& scene, const StepWords& words) {
    const std::vector<std::string> labels = scene.stage.Host().UndoLabels();
    const std::string& expected = words.texts[0];
    if (labels.empty() != expected.empty() || (!labels.empty() && labels.front() != expected))
        throw Failure(labels.empty() ? "there is nothing to undo"
                                     : Quoted(labels.front()) + " is undone next");
    return {};
}

std::string ExpectAt(StepScene&, const StepWords& words) {
    PositionView position;
    NodePosition(TheNode(words.texts[0]).handle, CheckedTime(words.seconds), position);
    const CorePlace place = InCore(position);
    const double distance = MetresBetween(place, words.place);
    std::string off = Plain(distance) + " m off";
    if (!(distance <= words.tolerance))
        throw Failure("it is at " + Plain(place.x) + ',' + Plain(place.y) + ',' + Plain(place.z) +
                      ", " + off);
    return off;
}

std::string ExpectBox(StepScene& scene, const StepWords& words) {
    const auto found = std::ranges::find_if(scene.boxes, [&](const std::string& box) {
        return box.find(words.texts[0]) != std::string::npos;
    });
    if (found != scene.boxes.end()) {
        scene.boxes.erase(found);
        return {};
    }
    std::string others;
    for (const std::string& box : scene.boxes)
        (others += others.empty() ? ", only " : ", ") += Quoted(box);
    throw Failure("no message box says so" + others);
}

constexpr auto kExpectationSteps = std::to_array<StepKind>({
    {"expect nodes", "N", "So many nodes are in the scene", &ExpectNodes},
    {"expect undo", "\"LABEL\"", "This is undone next; \"\" for nothing", &ExpectUndo},
    {"expect at", "SECONDS NAME X,Y,Z [TOLERANCE]",
     "At this time the node is there, within 0.001 m", &ExpectAt},
    {"expect box", "\"TEXT\"", "A message box holds this, other than one that was expected before",
     &ExpectBox},
});

}  // namespace

std::span<const StepKind> ExpectationSteps() {
    return kExpectationSteps;
}

}  // namespace headless
