#include "command/run.h"

#include <algorithm>
#include <iterator>

#include "command/exit_status.h"
#include "command/output.h"
#include "headless/scene_view.h"
#include "recorder/stream/notes.h"

namespace headless {
namespace {

// One run, from the start of the host to its end.
class Performance {
  public:
    Performance(const RunOptions& options, const std::function<void(const RunResult&)>& tell)
        : options_(options), tell_(tell), stage_(options.guests), scene_{stage_, {}} {}

    RunResult Perform() {
        Start();
        for (const Step& step : options_.steps) {
            const bool isDone = Do(step);
            EndIfStopped("at the step " + step.text);
            if (!isDone && !options_.keepsGoing) break;
        }
        End();
        return std::move(result_);
    }

  private:
    void Start() {
        stage_.NeedCore();
        result_.core = stage_.Seat().Library();
        result_.scene = options_.scene;
        if (!options_.scene.empty()) stage_.Open(options_.scene);
        if (options_.steps.empty()) {
            result_.utilities = stage_.Host().Utilities();
            result_.pages = stage_.Host().Pages();
            result_.options = stage_.Seat().Options();
        }
        keptDigest_ = SceneDigest();
        result_.start.step = result_.start.title = "start";
        LookAt(result_.start);
    }

    // False if it failed.
    bool Do(const Step& step) {
        StepOutcome& outcome = result_.steps.emplace_back();
        outcome.step = step.text;
        outcome.title = step.title;
        tell_(result_);
        stage_.Note(recorder::note::kStep, step.text);
        try {
            outcome.note = step.kind->act(scene_, step.words);
            const StepFile use = step.kind->file;
            if (use == StepFile::kSaved) result_.saved.push_back(step.File());
            if (use == StepFile::kSaved || use == StepFile::kOpened) keptDigest_ = SceneDigest();
        } catch (const Failure& failure) {
            outcome.error = failure.what();
        }
        LookAt(outcome);
        return outcome.error.empty();
    }

    void LookAt(StepOutcome& outcome) {
        outcome.news = stage_.TakeNews();
        std::ranges::copy(outcome.news.boxes, std::back_inserter(scene_.boxes));
        outcome.nodes = Nodes().size();
        outcome.undo = stage_.Host().UndoLabels();
        outcome.redo = stage_.Host().RedoLabels();
        outcome.isOver = true;
        tell_(result_);
    }

    void End() {
        result_.hasUnsavedChanges = !Nodes().empty() && SceneDigest() != keptDigest_;
        result_.end.step = result_.end.title = "end";
        result_.hostObjectsAlive = stage_.ShutDown();
        result_.end.news = stage_.TakeNews();
        if (options_.guests.watch != WatchChoice::kNo) result_.findings = stage_.Findings();
    }

    const RunOptions& options_;
    const std::function<void(const RunResult&)>& tell_;
    RunResult result_;
    CoreStage stage_;
    StepScene scene_;
    std::uint64_t keptDigest_ = 0;  // of the scene as it was opened or saved last
};

}  // namespace

RunResult Run(const RunOptions& options, const std::function<void(const RunResult&)>& tell) {
    return Performance(options, tell).Perform();
}

std::string FailureOf(const RunResult& result) {
    const auto failed = [](const StepOutcome& step) { return !step.error.empty(); };
    const auto first = std::ranges::find_if(result.steps, failed);
    if (first == result.steps.end()) return {};
    const auto count = static_cast<std::size_t>(std::ranges::count_if(result.steps, failed));
    const std::string line = first->title + ": " + first->error;
    return count == 1 ? line : line + " (and " + Counted(count - 1, "step") + " behind it failed)";
}

}  // namespace headless
