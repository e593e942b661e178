#include "objects/mesh_exchange.h"

#include <algorithm>
#include <array>
#include <span>

namespace {

constexpr std::size_t kCorners = 3;
using Corners = std::array<int, kCorners>;

void WriteVertices(const TVL::CMesh& from, Mesh& into) {
    const int count = static_cast<int>(from.vertices.size());
    into.setNumVerts(count, 0, 1);
    for (int index = 0; index < std::min(count, into.getNumVerts()); ++index)
        into.setVert(index, Narrowed(from.vertices[static_cast<std::size_t>(index)]));
}

void WriteTextureVertices(const TVL::CMesh& from, Mesh& into) {
    if (from.textureVertices.empty()) {
        into.setNumTVerts(1, 0);
        if (into.getNumTVerts() > 0) into.setTVert(0, Point3(0, 0, 0));
        return;
    }
    const int count = static_cast<int>(from.textureVertices.size());
    into.setNumTVerts(count, 0);
    for (int index = 0; index < std::min(count, into.getNumTVerts()); ++index)
        into.setTVert(index, Narrowed(from.textureVertices[static_cast<std::size_t>(index)]));
}

// The faces that the host gets: without vertices there is nothing that a face could name.
int WrittenFaceCount(const TVL::CMesh& from) {
    return from.vertices.empty() ? 0 : from.FaceCount();
}

// The three indices of a face; zeros unless all three are there and below `limit`.
Corners CornersOf(std::span<const int> indices, int face, std::size_t limit) {
    const std::size_t first = static_cast<std::size_t>(face) * kCorners;
    if (first + kCorners > indices.size()) return {};
    Corners corners{};
    for (std::size_t corner = 0; corner < kCorners; ++corner) {
        const int index = indices[first + corner];
        if (index < 0 || static_cast<std::size_t>(index) >= limit) return {};
        corners[corner] = index;
    }
    return corners;
}

// The host's tables are whatever can be indexed.
template <class Points>
std::vector<std::array<double, 3>> AllWidened(const Points& points, int count) {
    std::vector<std::array<double, 3>> widened(static_cast<std::size_t>(count));
    for (std::size_t index = 0; index < widened.size(); ++index)
        widened[index] = Widened(points[index]);
    return widened;
}

template <class Index>
void CopyCorners(const Index (&from)[kCorners], std::size_t face, std::vector<int>& into) {
    for (std::size_t corner = 0; corner < kCorners; ++corner)
        into[face * kCorners + corner] = static_cast<int>(from[corner]);
}

}  // namespace

// A host that has no room for a table may leave it as it was.
void WriteMesh(const TVL::CMesh& from, Mesh& into) {
    WriteVertices(from, into);
    WriteTextureVertices(from, into);
    const int faceCount = WrittenFaceCount(from);
    into.setNumFaces(faceCount, 0, 1);
    into.setNumTVFaces(faceCount, 0, 0);
    for (int index = 0; index < std::min(faceCount, into.getNumFaces()); ++index) {
        Face& face = into.faces[static_cast<std::size_t>(index)];
        const Corners verts = CornersOf(from.faces, index, from.vertices.size());
        face.setVerts(verts[0], verts[1], verts[2]);
        face.setEdgeVisFlags(1, 1, 0);
    }
    for (int index = 0; index < std::min(faceCount, into.getNumTVFaces()); ++index) {
        const Corners uvs = CornersOf(from.textureFaces, index, from.textureVertices.size());
        into.tvFace[static_cast<std::size_t>(index)].setTVerts(uvs[0], uvs[1], uvs[2]);
    }
    into.EnableEdgeList(1);
}

TVL::CMesh ReadMesh(const Mesh& from) {
    TVL::CMesh into;
    into.vertices = AllWidened(from.verts, from.getNumVerts());
    into.textureVertices = AllWidened(from.tVerts, from.getNumTVerts());
    const auto faceCount = static_cast<std::size_t>(from.getNumFaces());
    into.faces.resize(faceCount * kCorners);
    into.textureFaces.resize(into.faces.size());
    for (std::size_t face = 0; face < faceCount; ++face)
        CopyCorners(from.faces[face].v, face, into.faces);
    if (into.textureVertices.empty()) return into;
    const auto textureFaceCount = static_cast<std::size_t>(from.getNumTVFaces());
    for (std::size_t face = 0; face < std::min(faceCount, textureFaceCount); ++face)
        CopyCorners(from.tvFace[face].t, face, into.textureFaces);
    return into;
}

void WriteDisplayMesh(const TVL::CMesh& from, Mesh& into) {
    const int faceCount = WrittenFaceCount(from);
    WriteVertices(from, into);
    into.setNumFaces(faceCount, 0, 1);
    for (int index = 0; index < std::min(faceCount, into.getNumFaces()); ++index) {
        Face& face = into.faces[static_cast<std::size_t>(index)];
        const Corners verts = CornersOf(from.faces, index, from.vertices.size());
        face.setVerts(verts[0], verts[1], verts[2]);
        face.setEdgeVisFlags(1, 1, 1);
        face.setSmGroup(0);
    }
}

Point3 Narrowed(const std::array<double, 3>& point) {
    return {static_cast<float>(point[0]), static_cast<float>(point[1]),
            static_cast<float>(point[2])};
}

std::array<double, 3> Widened(const Point3& point) {
    return {point.x, point.y, point.z};
}
