#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "command/core_stage.h"
#include "interchange/gltf_file.h"
#include "interchange/scene_takes.h"

namespace CLI {
class App;
}

// What verbs that take takes along have in common.
namespace headless {

struct TakeChoice {
    std::vector<std::string> names{};  // all takes if empty
    double framesPerSecond = 0;        // 0 for each take's own
    bool keepsEnd = false;             // with a frame of its own, if none of that rate is there
};

// --take and --fps; and refuses what cannot be meant by them, before anything is opened.
void AddTakeChoice(CLI::App& verb, TakeChoice& choice);
void CheckTakeChoice(const TakeChoice& choice);

// A take with what tells where its nodes are, for as long as its stage is there.
struct ChosenTake {
    ChosenTake(interchange::Take recorded, const TakeChoice& choice);
    ChosenTake(const ChosenTake&) = delete;
    ChosenTake& operator=(const ChosenTake&) = delete;

    interchange::Take asRecorded;
    interchange::ScenePoses poses;
    interchange::Take take;  // in the frames that were chosen
};

using ChosenTakes = std::vector<std::unique_ptr<ChosenTake>>;

std::string NamesOf(const ChosenTakes& takes);

// Of the scene that is open on the stage. Throws a Failure if there is none, or none of a name that
// was chosen.
ChosenTakes TakesOfStage(CoreStage& stage, const std::string& scene, const TakeChoice& choice);

// Has a file written, which is there whole or not at all. What is done is told to a person who
// waits; `passes` is how often `write` tells of each frame that it is done.
struct TakesWork {
    const char* title;
    std::size_t passes;
    std::function<void(const std::vector<interchange::MovingTake>& takes, std::ostream& out,
                       const interchange::FrameDone& done)>
        write;
};
void SaveTakes(const std::string& file, ChosenTakes& chosen, const TakesWork& work);

}  // namespace headless
