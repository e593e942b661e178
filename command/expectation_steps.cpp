#include <algorithm>

#include "command/exit_status.h"
#include "command/output.h"
#include "command/step_acts.h"
#include "command/step_arguments.h"

// Steps that change nothing, and fail where something is otherwise than it was expected.
namespace headless {
namespace {

constexpr double kTolerance = 0.001;  // metres

std::string Told(const CorePlace& place) {
    return Plain(place.x) + ',' + Plain(place.y) + ',' + Plain(place.z);
}

void ExpectUndo(const std::vector<std::string>& labels, const std::string& label) {
    const std::string next = labels.empty() ? "" : labels.front();
    if (next == label && labels.empty() == label.empty()) return;
    throw Failure(labels.empty() ? "there is nothing to undo" : Quoted(next) + " is undone next");
}

std::string ExpectAt(double seconds, const std::string& name, const CorePlace& expected,
                     double tolerance) {
    PositionView position;
    NodePosition(TheNode(name).handle, CheckedTime(seconds), position);
    const CorePlace place = InCore(position);
    const double distance = MetresBetween(place, expected);
    if (!(distance <= tolerance))
        throw Failure("it is at " + Told(place) + ", " + Plain(distance) + " m off");
    return Plain(distance) + " m off";
}

void ExpectBox(std::vector<std::string>& boxes, const std::string& text) {
    const auto holds = [&](const std::string& box) { return box.find(text) != std::string::npos; };
    const auto found = std::ranges::find_if(boxes, holds);
    if (found != boxes.end()) {
        boxes.erase(found);
        return;
    }
    std::string others;
    for (const std::string& box : boxes)
        (others += others.empty() ? "" : ", ") += Quoted(box);
    throw Failure("no message box says so" + (others.empty() ? "" : ", only " + others));
}

}  // namespace

StepAct MakeExpectNodes(StepWords words) {
    const std::size_t expected = ReadCount(words[0], "a number of nodes");
    return [expected](StepScene&) {
        const std::size_t count = Nodes().size();
        if (count != expected) throw Failure("the scene has " + Counted(count, "node"));
        return std::string();
    };
}

StepAct MakeExpectUndo(StepWords words) {
    return [label = words[0]](StepScene& scene) {
        ExpectUndo(scene.stage.Host().UndoLabels(), label);
        return std::string();
    };
}

StepAct MakeExpectAt(StepWords words) {
    const double seconds = ReadNumber(words[0], "a number of seconds");
    const double tolerance =
        words.size() > 3 ? ReadNumber(words[3], "a number of metres") : kTolerance;
    return [seconds, name = words[1], place = ReadPlace(words[2]), tolerance](StepScene&) {
        return ExpectAt(seconds, name, place, tolerance);
    };
}

StepAct MakeExpectBox(StepWords words) {
    return [text = words[0]](StepScene& scene) {
        ExpectBox(scene.boxes, text);
        return std::string();
    };
}

}  // namespace headless
