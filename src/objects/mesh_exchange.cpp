#include "objects/mesh_exchange.h"

#include <algorithm>
#include <array>
#include <span>

namespace {

constexpr std::size_t kCorners = 3;
using Corners = std::array<int, kCorners>;

void WriteVertices(const TVL::CMesh& from, Mesh& into) {
    into.setNumVerts(static_cast<int>(from.vertices.size()), 0, 1);
    for (int index = 0; index < into.getNumVerts(); ++index)
        into.setVert(index, Narrowed(from.vertices[static_cast<std::size_t>(index)]));
}

void WriteTextureVertices(const TVL::CMesh& from, Mesh& into) {
    if (from.textureVertices.empty()) {
        into.setNumTVerts(1, 0);
        into.setTVert(0, Point3(0, 0, 0));
        return;
    }
    into.setNumTVerts(static_cast<int>(from.textureVertices.size()), 0);
    for (int index = 0; index < into.getNumTVerts(); ++index)
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

std::vector<std::array<double, 3>> AllWidened(const std::vector<Point3>& points) {
    std::vector<std::array<double, 3>> widened;
    widened.reserve(points.size());
    for (const Point3& point : points)
        widened.push_back(Widened(point));
    return widened;
}

void CopyCorners(const std::uint32_t (&from)[kCorners], std::size_t face, std::vector<int>& into) {
    for (std::size_t corner = 0; corner < kCorners; ++corner)
        into[face * kCorners + corner] = static_cast<int>(from[corner]);
}

}  // namespace

void WriteMesh(const TVL::CMesh& from, Mesh& into) {
    WriteVertices(from, into);
    WriteTextureVertices(from, into);
    const int faceCount = WrittenFaceCount(from);
    into.setNumFaces(faceCount, 0, 1);
    into.setNumTVFaces(faceCount, 0, 0);
    for (int index = 0; index < faceCount; ++index) {
        const std::size_t face = static_cast<std::size_t>(index);
        const Corners verts = CornersOf(from.faces, index, from.vertices.size());
        into.faces[face].setVerts(verts[0], verts[1], verts[2]);
        into.faces[face].setEdgeVisFlags(1, 1, 0);
        const Corners uvs = CornersOf(from.textureFaces, index, from.textureVertices.size());
        into.tvFace[face].setTVerts(uvs[0], uvs[1], uvs[2]);
    }
    into.EnableEdgeList(1);
}

TVL::CMesh ReadMesh(const Mesh& from) {
    TVL::CMesh into;
    into.vertices = AllWidened(from.verts);
    into.textureVertices = AllWidened(from.tVerts);
    into.faces.resize(from.faces.size() * kCorners);
    into.textureFaces.resize(into.faces.size());
    for (std::size_t face = 0; face < from.faces.size(); ++face)
        CopyCorners(from.faces[face].v, face, into.faces);
    if (from.tVerts.empty()) return into;
    for (std::size_t face = 0; face < std::min(from.faces.size(), from.tvFace.size()); ++face)
        CopyCorners(from.tvFace[face].t, face, into.textureFaces);
    return into;
}

void WriteDisplayMesh(const TVL::CMesh& from, Mesh& into) {
    const int faceCount = WrittenFaceCount(from);
    WriteVertices(from, into);
    into.setNumFaces(faceCount, 0, 1);
    for (int index = 0; index < faceCount; ++index) {
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
