#include "headless/drawing/drawn_mesh.h"

#include <algorithm>
#include <cstddef>

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

// As long as twice the face's area.
std::vector<Vector> AreaNormals(const DrawnMesh& mesh) {
    std::vector<Vector> normals;
    normals.reserve(mesh.faces.size());
    for (const DrawnFace& face : mesh.faces) {
        const Vector a(mesh.places[face.v[0]]);
        normals.push_back(
            Cross(Vector(mesh.places[face.v[1]]) - a, Vector(mesh.places[face.v[2]]) - a));
    }
    return normals;
}

std::uint32_t GroupsInUse(const std::vector<DrawnFace>& faces) {
    std::uint32_t groups = 0;
    for (const DrawnFace& face : faces)
        groups |= face.groups;
    return groups;
}

using Corners = std::array<Vector, 3>;

// Adds to each corner of the group's faces what the group's faces around its place give. `sums`
// has an entry for each place.
void AddGroup(std::uint32_t group, const std::vector<DrawnFace>& faces,
              const std::vector<Vector>& areaNormals, std::vector<Vector>& sums,
              std::vector<Corners>& corners) {
    std::fill(sums.begin(), sums.end(), Vector());
    for (std::size_t f = 0; f < faces.size(); ++f) {
        if ((faces[f].groups & group) == 0) continue;
        for (const std::uint32_t place : faces[f].v)
            sums[place] = sums[place] + areaNormals[f];
    }
    for (std::size_t f = 0; f < faces.size(); ++f) {
        if ((faces[f].groups & group) == 0) continue;
        for (std::size_t corner = 0; corner < 3; ++corner)
            corners[f][corner] = corners[f][corner] + sums[faces[f].v[corner]];
    }
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

CornerNormals SmoothNormals(const DrawnMesh& mesh) {
    const std::vector<Vector> areaNormals = AreaNormals(mesh);
    std::vector<Corners> corners(mesh.faces.size());
    std::vector<Vector> sums(mesh.places.size());
    for (std::uint32_t left = GroupsInUse(mesh.faces); left != 0; left &= left - 1)
        AddGroup(left & (~left + 1), mesh.faces, areaNormals, sums, corners);

    CornerNormals normals(mesh.faces.size());
    for (std::size_t f = 0; f < mesh.faces.size(); ++f)
        for (std::size_t corner = 0; corner < 3; ++corner)
            normals[f][corner] =
                UnitOf(mesh.faces[f].groups == 0 ? areaNormals[f] : corners[f][corner]);
    return normals;
}

CornerNormals FlatNormals(const DrawnMesh& mesh) {
    CornerNormals normals;
    normals.reserve(mesh.faces.size());
    for (const Vector& areaNormal : AreaNormals(mesh)) {
        const Point3 normal = UnitOf(areaNormal);
        normals.push_back({normal, normal, normal});
    }
    return normals;
}

}  // namespace headless
