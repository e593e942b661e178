#include "headless/drawing/drawn_mesh.h"

#include <algorithm>

#include "headless/drawing/hit_tests.h"
#include "headless/values/vector.h"

namespace headless {
namespace {

bool Mirrors(const Matrix3& matrix) {
    const Vector x(matrix.GetRow(0));
    return Dot(x, Cross(Vector(matrix.GetRow(1)), Vector(matrix.GetRow(2)))) < 0;
}

DrawnFace AsDrawn(const Face& face, bool isMirrored) {
    const auto& [a, b, c] = face.v;
    if (isMirrored)
        return {
            {a, c, b}, face.smGroup, {face.getEdgeVis(2), face.getEdgeVis(1), face.getEdgeVis(0)}};
    return {{a, b, c}, face.smGroup, {face.getEdgeVis(0), face.getEdgeVis(1), face.getEdgeVis(2)}};
}

}  // namespace

DrawnMesh InWorld(const Mesh& mesh, const Matrix3& objectToWorld) {
    DrawnMesh drawn;
    drawn.places.reserve(mesh.verts.size());
    for (const Point3& vertex : mesh.verts)
        drawn.places.push_back(objectToWorld.PointTransform(vertex));

    const bool isMirrored = Mirrors(objectToWorld);
    const auto isPlaced = [&](std::uint32_t v) {
        return v < drawn.places.size() && IsFinite(drawn.places[v]);
    };
    drawn.faces.reserve(mesh.faces.size());
    for (const Face& face : mesh.faces)
        if (std::all_of(face.v, face.v + 3, isPlaced))
            drawn.faces.push_back(AsDrawn(face, isMirrored));
    return drawn;
}

void DropBackfaces(DrawnMesh& mesh, const View& view) {
    std::erase_if(mesh.faces, [&](const DrawnFace& face) {
        const auto& [a, b, c] = face.v;
        return LooksAway(view, mesh.places[a], mesh.places[b], mesh.places[c]);
    });
}

std::vector<std::pair<std::uint32_t, std::uint32_t>> VisibleEdges(const DrawnMesh& mesh) {
    std::vector<std::pair<std::uint32_t, std::uint32_t>> edges;
    for (const DrawnFace& face : mesh.faces)
        for (std::size_t corner = 0; corner < 3; ++corner)
            if (face.edgeShows[corner])
                edges.push_back(std::minmax({face.v[corner], face.v[(corner + 1) % 3]}));
    std::sort(edges.begin(), edges.end());
    edges.erase(std::unique(edges.begin(), edges.end()), edges.end());
    return edges;
}

}  // namespace headless
