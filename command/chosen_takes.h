#pragma once

#include <memory>
#include <string>
#include <vector>

#include "command/core_stage.h"
#include "interchange/scene_takes.h"

namespace CLI {
class App;
}

// What verbs that take takes along have in common.
namespace headless {

struct TakeChoice {
    std::vector<std::string> names{};  // all takes if empty
    double framesPerSecond = 0;        // 0 for each take's own
};

// --take and --fps; and refuses what cannot be meant by them, before anything is opened.
void AddTakeChoice(CLI::App& verb, TakeChoice& choice);
void CheckTakeChoice(const TakeChoice& choice);

// A take with what tells where its nodes are, for as long as its stage is there.
struct ChosenTake {
    ChosenTake(interchange::Take recorded, double framesPerSecond);
    ChosenTake(const ChosenTake&) = delete;
    ChosenTake& operator=(const ChosenTake&) = delete;

    interchange::Take asRecorded;
    interchange::ScenePoses poses;
    interchange::Take take;  // in the frames that were chosen
};

// Of the scene that is open on the stage. Throws a Failure if there is none, or none of a name that
// was chosen.
std::vector<std::unique_ptr<ChosenTake>> TakesOfStage(CoreStage& stage, const std::string& scene,
                                                      const TakeChoice& choice);

}  // namespace headless
