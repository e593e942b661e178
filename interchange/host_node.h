#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "host/types.h"
#include "interchange/take.h"

class INode;

// What is asked of a node of the running host.
namespace interchange {

double TicksPerSecond();

// The seconds that the host's time ends with.
double LastSeconds();

// The tick at which a Core finds the node at that time.
TimeValue TickOf(double seconds);

// Of all keys of the node's transform controller and its parts, each once, the earliest first; none
// if there is no such node.
std::vector<TimeValue> KeyTimesOf(std::uint32_t handle);

// As the viewport shows it, in the node's own space.
std::vector<ShapeVertex> ShapeOf(INode& node, TimeValue t);

// In a take from the first to the last tick. Nothing if the node is no camera.
std::optional<Lens> LensOf(INode& node, TimeValue first, TimeValue last);

}  // namespace interchange
