#include "command/chosen_takes.h"

#include <algorithm>
#include <fstream>
#include <utility>

#include "command/exit_status.h"
#include "command/long_work.h"
#include "command/output.h"
#include "command/verb_options.h"

namespace headless {
namespace {

// The host keeps no two moments of a scene apart that lie nearer, and none of a take lasts longer.
constexpr double kMostFramesPerSecond = 4800;
constexpr double kLongestFrame = 1e6;  // seconds

}  // namespace

void AddTakeChoice(CLI::App& verb, TakeChoice& choice) {
    AddNames(verb, "--take", choice.names, "The name of a take");
    AddSize(verb, "--fps", choice.framesPerSecond,
            "Frames in a second; else those that the take was recorded in");
}

void CheckTakeChoice(const TakeChoice& choice) {
    const double fps = choice.framesPerSecond;
    if (fps != 0 && (fps > kMostFramesPerSecond || 1 / fps > kLongestFrame))
        Refuse("--fps: " + Plain(fps) + " is not from 0.000001 to 4,800");
}

ChosenTake::ChosenTake(interchange::Take recorded, const TakeChoice& choice)
    : asRecorded(std::move(recorded)),
      poses(asRecorded),
      take(choice.framesPerSecond > 0
               ? asRecorded.Resampled(1 / choice.framesPerSecond, choice.keepsEnd)
               : asRecorded) {}

std::string NamesOf(const ChosenTakes& takes) {
    std::string names;
    for (const std::unique_ptr<ChosenTake>& chosen : takes)
        names += (names.empty() ? "" : ", ") + Quoted(chosen->take.name);
    return names;
}

ChosenTakes TakesOfStage(CoreStage& stage, const std::string& scene, const TakeChoice& choice) {
    ChosenTakes takes;
    for (interchange::Take& take : interchange::TakesOf(
             stage.HasReplayCore() ? stage.AskCore({}).takes : std::vector<replay::TakeReport>()))
        takes.push_back(std::make_unique<ChosenTake>(std::move(take), choice));
    if (takes.empty())
        throw Failure(scene + ": there is no take in it, and no node has more than one key");
    for (const std::string& name : choice.names)
        if (std::ranges::none_of(takes, [&](const auto& one) { return one->take.name == name; }))
            throw Failure(scene + ": there is no take " + Quoted(name) + " in it, but " +
                          NamesOf(takes));
    std::erase_if(takes, [&](const auto& one) {
        return !choice.names.empty() &&
               std::ranges::find(choice.names, one->take.name) == choice.names.end();
    });
    return takes;
}

void SaveTakes(const std::string& file, ChosenTakes& chosen, const TakesWork& work) {
    std::size_t frames = 0;
    std::vector<interchange::MovingTake> takes;
    for (const std::unique_ptr<ChosenTake>& one : chosen) {
        frames += one->take.frameCount;
        takes.push_back({&one->take, &one->poses});
    }
    CoreFile written(file);
    std::ofstream out(written.Path(), std::ios::binary);
    LongWork writing(work.title, frames * work.passes);
    work.write(takes, out,
               [&, isStepDone = writing.StepDone()] { return isStepDone() && out.good(); });
    writing.End();
    out.close();
    if (!out) throw Failure(file + ": the file cannot be written");
    written.Keep();
}

}  // namespace headless
