#pragma once

#include <vector>

#include "headless/primitives.h"
#include "host/mesh.h"

namespace headless {

// Places along a spline whose straight connections show it: the knots, and between them further
// places where it is curved. A closed one comes back to its first. Places that are no numbers are
// left out.
std::vector<Point3> LinesAlong(const Spline& spline);

// Adds thin tubes along the lines, closed at their ends.
void AddTube(const std::vector<Point3>& line, float radius, Mesh& mesh);

}  // namespace headless
