#include <algorithm>
#include <cmath>

#include "headless/objects/own_classes.h"
#include "headless/primitives.h"

namespace headless {
namespace {

constexpr int kMostDivisions = 1000;

// A vertex and a texture vertex for each corner of the grid, row by row.
void SetCorners(Mesh& mesh, float side, int divisions) {
    const int count = (divisions + 1) * (divisions + 1);
    mesh.setNumVerts(count);
    mesh.setNumTVerts(count);
    for (int i = 0; i < count; ++i) {
        const int column = i % (divisions + 1);
        const int row = i / (divisions + 1);
        const float u = static_cast<float>(column) / static_cast<float>(divisions);
        const float v = static_cast<float>(row) / static_cast<float>(divisions);
        mesh.setVert(i, {side * (u - 0.5F), side * (v - 0.5F), 0});
        mesh.setTVert(i, {u, v, 0});
    }
}

void SetFace(Mesh& mesh, int index, int a, int b, int c) {
    const auto at = static_cast<std::size_t>(index);
    mesh.faces[at].setVerts(a, b, c);
    mesh.faces[at].setEdgeVisFlags(1, 1, 0);
    mesh.faces[at].setSmGroup(1);
    mesh.tvFace[at].setTVerts(a, b, c);
}

// Two faces for each square; the diagonal between them, the last edge of both, does not show.
void SetFaces(Mesh& mesh, int divisions) {
    mesh.setNumFaces(2 * divisions * divisions);
    mesh.setNumTVFaces(2 * divisions * divisions);
    int face = 0;
    for (int row = 0; row < divisions; ++row) {
        for (int column = 0; column < divisions; ++column) {
            const int corner = row * (divisions + 1) + column;
            const int above = corner + divisions + 1;
            SetFace(mesh, face++, corner, corner + 1, above + 1);
            SetFace(mesh, face++, above + 1, above, corner);
        }
    }
}

}  // namespace

TriObject* NewGround(float side, int divisions) {
    TriObject* object = NewMeshObject("Ground");
    const int count = std::clamp(divisions, 1, kMostDivisions);
    SetCorners(object->GetMesh(), std::isfinite(side) ? side : 0, count);
    SetFaces(object->GetMesh(), count);
    return object;
}

}  // namespace headless
