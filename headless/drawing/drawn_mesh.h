#pragma once

#include <array>
#include <cstdint>
#include <utility>
#include <vector>

#include "headless/drawing/view.h"
#include "host/matrix3.h"
#include "host/mesh.h"

namespace headless {

// A face by the indices of its places, counter-clockwise from outside.
struct DrawnFace {
    std::array<std::uint32_t, 3> v{};
    std::uint32_t groups = 0;         // smoothing groups, a bit each
    std::array<bool, 3> edgeShows{};  // from each corner to the next
};

// A mesh on its way into a drawing: its vertices in world space, and the faces that can be drawn.
struct DrawnMesh {
    std::vector<Point3> places;
    std::vector<DrawnFace> faces;
};

// Faces that name a missing vertex, or one whose place is no finite number, are left out. A
// transform that mirrors turns the faces round, so that outside stays outside.
DrawnMesh InWorld(const Mesh& mesh, const Matrix3& objectToWorld);

// Leaves out the faces that look away. Nothing looks away in a view without a matrix.
void DropBackfaces(DrawnMesh& mesh, const View& view);

// The edges that show, each once, as pairs of indices in rising order.
std::vector<std::pair<std::uint32_t, std::uint32_t>> VisibleEdges(const DrawnMesh& mesh);

// The normal at each corner, face by face: of the faces around the corner's place that share a
// smoothing group with its face, weighed by their area and by how many groups they share; of a face
// in no group, its own. Unit length, or zero if the faces have no area. In time linear in the faces
// for each group in use.
using CornerNormals = std::vector<std::array<Point3, 3>>;
CornerNormals SmoothNormals(const DrawnMesh& mesh);
CornerNormals FlatNormals(const DrawnMesh& mesh);  // without smoothing

}  // namespace headless
