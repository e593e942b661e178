#include <algorithm>
#include <cmath>

#include "command/exit_status.h"
#include "command/output.h"
#include "command/step_acts.h"
#include "command/step_arguments.h"
#include "command/written_files.h"
#include "headless/viewport.h"
#include "host/interface.h"
#include "host/time.h"

// Steps on time, scene and files.
namespace headless {
namespace {

using Names = std::vector<std::string>;

constexpr double kMostMoments = 1'000'000;

std::string Play(Session& host, const MomentRange& range) {
    const double step = range.step > 0 ? range.step : 1.0 / GetFrameRate();
    // An end that a step misses by no more than rounding is met.
    const double steps = std::floor((range.end - range.start) / step + 1e-6);
    if (!(steps < kMostMoments)) throw Failure("these are more than 1,000,000 moments");
    CheckedTime(range.start);
    CheckedTime(range.end);
    const auto count = static_cast<std::size_t>(steps) + 1;
    for (std::size_t i = 0; i < count; ++i)
        host.SetTime(AtSeconds(range.start + static_cast<double>(i) * step));
    return Counted(count, "moment");
}

std::string Select(Session& host, const Names& names) {
    const std::vector<NodeView> nodes = Nodes();
    for (const std::string& name : names)
        if (std::ranges::find(nodes, name, &NodeView::name) == nodes.end())
            throw Failure("no node is called " + Quoted(name) + NearestNode(name));
    return Counted(host.Select(names), "node");
}

std::string Delete(Session& host) {
    if (std::ranges::none_of(Nodes(), &NodeView::selected)) throw Failure("nothing is selected");
    return Counted(host.DeleteSelected(), "node") + " deleted";
}

// Undo or redo, and what there is for it.
struct Direction {
    bool (Session::*go)();
    Names (Session::*labels)() const;
    const char* name;
};
constexpr Direction kUndo{&Session::Undo, &Session::UndoLabels, "undo"};
constexpr Direction kRedo{&Session::Redo, &Session::RedoLabels, "redo"};

std::string Go(Session& host, const Direction& direction, std::size_t steps) {
    std::string labels;
    for (std::size_t done = 0; done < steps; ++done) {
        const Names next = (host.*direction.labels)();
        if (next.empty())
            throw Failure("there is nothing to " + std::string(direction.name) +
                          (done == 0 ? "" : " after " + Counted(done, "step")));
        if (!(host.*direction.go)())
            throw Failure("the host cannot " + std::string(direction.name) + " now");
        (labels += labels.empty() ? "" : ", ") += Quoted(next.front());
    }
    return labels;
}

StepAct MakeGo(StepWords words, const Direction& direction) {
    const std::size_t steps = words.empty() ? 1 : ReadCount(words[0], "a number of steps");
    return
        [steps, &direction](StepScene& scene) { return Go(scene.stage.Host(), direction, steps); };
}

std::string Move(Session& host, const std::string& name, const CorePlace& place) {
    if (!host.MoveNode(TheNode(name).handle, InHost(place)))
        throw Failure("the host does not move it");
    return {};
}

std::string Link(Session& host, const std::string& child, const std::string& parent) {
    const std::uint32_t to = parent.empty() ? 0 : TheNode(parent).handle;
    if (!host.LinkNode(TheNode(child).handle, to))
        throw Failure("a node cannot hang below itself or what hangs below it");
    return {};
}

std::string Draw(const std::string& file) {
    Picture picture;
    std::string error = DrawPicture({}, GetCOREInterface()->GetTime(), picture);
    if (error.empty()) error = WritePng(picture, file);
    if (!error.empty()) throw Failure(error);
    NoteSaved(file);
    return std::to_string(picture.width) + 'x' + std::to_string(picture.height) + " pixels";
}

// What a step does to a stage with the one word that it has.
template <class Work>
StepAct Doing(Work work) {
    return [work](StepScene& scene) {
        work(scene.stage);
        return std::string();
    };
}

}  // namespace

StepAct MakeTime(StepWords words) {
    const double seconds = ReadNumber(words[0], "a number of seconds");
    return Doing([seconds](CoreStage& stage) { stage.Host().SetTime(CheckedTime(seconds)); });
}

StepAct MakePlay(StepWords words) {
    const MomentRange range = ReadMoments(words[0]);
    return [range](StepScene& scene) { return Play(scene.stage.Host(), range); };
}

StepAct MakeSelect(StepWords words) {
    return [names = Names(words.begin(), words.end())](StepScene& scene) {
        return Select(scene.stage.Host(), names);
    };
}

StepAct MakeDelete(StepWords) {
    return [](StepScene& scene) { return Delete(scene.stage.Host()); };
}

StepAct MakeUndo(StepWords words) {
    return MakeGo(words, kUndo);
}

StepAct MakeRedo(StepWords words) {
    return MakeGo(words, kRedo);
}

StepAct MakeMove(StepWords words) {
    return [name = words[0], place = ReadPlace(words[1])](StepScene& scene) {
        return Move(scene.stage.Host(), name, place);
    };
}

StepAct MakeParent(StepWords words) {
    if (words.size() > 1 && words[1].empty()) RefuseStep("a name is empty");
    return [child = words[0], parent = words.size() > 1 ? words[1] : ""](StepScene& scene) {
        return Link(scene.stage.Host(), child, parent);
    };
}

StepAct MakeNew(StepWords) {
    return Doing([](CoreStage& stage) { stage.Host().NewScene(); });
}

StepAct MakeReset(StepWords) {
    return Doing([](CoreStage& stage) { stage.Host().Reset(); });
}

StepAct MakeOpen(StepWords words) {
    return Doing([file = words[0]](CoreStage& stage) { stage.Open(file); });
}

StepAct MakeMerge(StepWords words) {
    return Doing([file = words[0]](CoreStage& stage) { stage.MergeByHost(file); });
}

StepAct MakeSave(StepWords words) {
    return Doing([file = words[0]](CoreStage& stage) { stage.Save(file); });
}

StepAct MakeRender(StepWords words) {
    return [file = words[0]](StepScene&) { return Draw(file); };
}

}  // namespace headless
