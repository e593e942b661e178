#include <algorithm>
#include <array>
#include <cmath>

#include "command/exit_status.h"
#include "command/output.h"
#include "command/render.h"
#include "command/steps.h"
#include "command/written_files.h"
#include "command/wrong_words.h"
#include "host/hold.h"
#include "host/interface.h"
#include "host/time.h"

// Steps on time, scene and files.
namespace headless {
namespace {

constexpr double kMostMoments = 1'000'000;

std::string GoTo(StepScene& scene, const StepWords& words) {
    scene.stage.Host().SetTime(CheckedTime(words.seconds));
    return {};
}

std::string Play(StepScene& scene, const StepWords& words) {
    const MomentRange& range = words.moments;
    const double step = range.step > 0 ? range.step : 1.0 / GetFrameRate();
    // An end that a step misses by no more than rounding is met.
    const double steps = std::floor((range.end - range.start) / step + 1e-6);
    if (!(steps < kMostMoments)) throw Failure("these are more than 1,000,000 moments");
    CheckedTime(range.start);
    CheckedTime(range.end);
    const auto count = static_cast<std::size_t>(steps) + 1;
    for (std::size_t i = 0; i < count; ++i)
        scene.stage.Host().SetTime(AtSeconds(range.start + static_cast<double>(i) * step));
    return Counted(count, "moment");
}

std::string Select(StepScene& scene, const StepWords& words) {
    for (const std::string& name : words.texts)
        if (!FindNode(name)) throw Failure(NoNode(name));
    return Counted(scene.stage.Host().Select(words.texts), "node");
}

std::string Delete(StepScene& scene, const StepWords&) {
    if (std::ranges::none_of(Nodes(), &NodeView::selected)) throw Failure("nothing is selected");
    return Counted(scene.stage.Host().DeleteSelected(), "node") + " deleted";
}

// Undo or redo, and what there is for it.
struct Direction {
    bool (Session::*go)();
    std::vector<std::string> (Session::*labels)() const;
    const char* name;
};

std::string Go(Session& host, const Direction& direction, std::size_t steps) {
    std::string labels;
    for (std::size_t done = 0; done < steps; ++done) {
        if (theHold.Holding()) throw Failure("an undo group is still open");
        const std::vector<std::string> next = (host.*direction.labels)();
        if (next.empty())
            throw Failure("there is nothing to " + std::string(direction.name) +
                          (done == 0 ? "" : " after " + Counted(done, "step")));
        if (!(host.*direction.go)())
            throw Failure("the host cannot " + std::string(direction.name) + " now");
        (labels += labels.empty() ? "" : ", ") += Quoted(next.front());
    }
    return labels;
}

std::string Undo(StepScene& scene, const StepWords& words) {
    return Go(scene.stage.Host(), {&Session::Undo, &Session::UndoLabels, "undo"}, words.count);
}

std::string Redo(StepScene& scene, const StepWords& words) {
    return Go(scene.stage.Host(), {&Session::Redo, &Session::RedoLabels, "redo"}, words.count);
}

std::string Move(StepScene& scene, const StepWords& words) {
    if (!scene.stage.Host().MoveNode(TheNode(words.texts[0]).handle, InHost(words.place)))
        throw Failure("the host does not move it");
    return {};
}

std::string Link(StepScene& scene, const StepWords& words) {
    const std::uint32_t parent = words.texts.size() > 1 ? TheNode(words.texts[1]).handle : 0;
    if (!scene.stage.Host().LinkNode(TheNode(words.texts[0]).handle, parent))
        throw Failure("a node cannot hang below itself or what hangs below it");
    return {};
}

std::string New(StepScene& scene, const StepWords&) {
    scene.stage.EmptyScene(&Session::NewScene);
    return {};
}

std::string Reset(StepScene& scene, const StepWords&) {
    scene.stage.EmptyScene(&Session::Reset);
    return {};
}

std::string Open(StepScene& scene, const StepWords& words) {
    scene.stage.Open(words.texts[0]);
    return {};
}

std::string Merge(StepScene& scene, const StepWords& words) {
    scene.stage.MergeByHost(words.texts[0]);
    return {};
}

std::string Save(StepScene& scene, const StepWords& words) {
    scene.stage.Save(words.texts[0]);
    return {};
}

std::string Draw(StepScene&, const StepWords& words) {
    const Picture picture = PictureAt(ViewportSettings(), GetCOREInterface()->GetTime(), "");
    SavePicture(picture, words.texts[0]);
    return std::to_string(picture.width) + 'x' + std::to_string(picture.height) + " pixels";
}

constexpr auto kSceneSteps = std::to_array<StepKind>({
    {"time", "SECONDS", "Go to a time", &GoTo},
    {"play", "START:END[:STEP]", "Go through times, frame by frame if no step is said", &Play},
    {"select", "NAME...", "Select the nodes of these names alone", &Select},
    {"delete", "", "Delete what is selected", &Delete},
    {"undo", "[N]", "Undo one step, or as many", &Undo},
    {"redo", "[N]", "Redo one step, or as many", &Redo},
    {"move", "NAME X,Y,Z", "Move a node to a place at the current time", &Move},
    {"parent", "NAME [NAME]", "Link a node to another, or to none", &Link},
    {"new", "", "Empty the scene", &New},
    {"reset", "", "Empty the scene, and put units, rate and times back", &Reset},
    {"open", "FILE", "Open a scene", &Open, StepFile::kOpened},
    {"merge", "FILE", "Merge a scene, as the host does", &Merge, StepFile::kMerged},
    {"save", "FILE", "Save the scene", &Save, StepFile::kSaved},
    {"render", "FILE", "Draw the scene at the current time as a PNG file", &Draw, StepFile::kDrawn},
});

}  // namespace

std::span<const StepKind> SceneSteps() {
    return kSceneSteps;
}

}  // namespace headless
