#pragma once

#include <string_view>

#include "player/recovery/session_calls.h"

// What calls of a Core's do, as far as it matters to what is brought back.
namespace player {

enum class Effect {
    kNone,    // of the moment alone: never made again
    kLook,    // asks, or lends and gives back
    kChange,  // the scene
    kSample,  // the same, by a snapshot at its time
};
Effect EffectOf(const Record& call);

// In the host's scene, for the Core.
bool MakesSceneNode(Operation operation);

// The undo step that a call makes of itself outside of groups, if it does anything; else empty.
std::string_view OwnStepOf(const Record& call);

}  // namespace player
