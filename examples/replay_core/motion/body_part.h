#pragma once

#include <cstdint>
#include <string_view>

namespace replay {

// What a joint's name says of its place in a body. Captures name joints each in a way of their own:
// "LeftArm", "LHipJoint", "r_foot", "Toe.L", "lShldr", "rig:RightHand".

enum class BodySide : std::uint8_t { kMiddle, kLeft, kRight };

// By the word left or right, in any case, or by a letter L or R that stands apart at either end of
// the name. A name with neither, such as "LowerBack", "Root" or the vertebra "L5", is the middle's.
BodySide SideOf(std::string_view jointName);

// A joint that can come to stand on the ground.
bool IsFoot(std::string_view jointName);

}  // namespace replay
