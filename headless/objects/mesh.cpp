#include "host/mesh.h"

#include <cstddef>

namespace {

constexpr std::uint32_t kEdgeVisible[3] = {1, 2, 4};  // bits of Face::flags

// A count below zero leaves the table as it is.
template <class T>
bool Resize(std::vector<T>& table, int count, int keep) {
    if (count < 0) return false;
    if (keep == 0) table.clear();
    table.resize(static_cast<std::size_t>(count));
    return true;
}

}  // namespace

void Face::setVerts(int a, int b, int c) {
    v[0] = static_cast<std::uint32_t>(a);
    v[1] = static_cast<std::uint32_t>(b);
    v[2] = static_cast<std::uint32_t>(c);
}

void Face::setEdgeVisFlags(int ab, int bc, int ca) {
    const int visible[3] = {ab, bc, ca};
    for (int edge = 0; edge < 3; ++edge) {
        if (visible[edge] != 0)
            flags |= kEdgeVisible[edge];
        else
            flags &= ~kEdgeVisible[edge];
    }
}

bool Face::getEdgeVis(int edge) const {
    return edge >= 0 && edge < 3 && (flags & kEdgeVisible[edge]) != 0;
}

void TVFace::setTVerts(int a, int b, int c) {
    t[0] = static_cast<std::uint32_t>(a);
    t[1] = static_cast<std::uint32_t>(b);
    t[2] = static_cast<std::uint32_t>(c);
}

bool Mesh::setNumVerts(int count, int keep, int) {
    return Resize(verts, count, keep);
}

bool Mesh::setNumFaces(int count, int keep, int) {
    return Resize(faces, count, keep);
}

bool Mesh::setNumTVerts(int count, int keep) {
    return Resize(tVerts, count, keep);
}

bool Mesh::setNumTVFaces(int count, int keep, int) {
    return Resize(tvFace, count, keep);
}

void Mesh::setVert(int index, const Point3& p) {
    verts[static_cast<std::size_t>(index)] = p;
}

void Mesh::setTVert(int index, const Point3& uvw) {
    tVerts[static_cast<std::size_t>(index)] = uvw;
}

void Mesh::EnableEdgeList(int enable) {
    edgeList_ = enable != 0;
}

// Nothing is derived from the tables and kept, so there is nothing to drop.
void Mesh::InvalidateGeomCache() {}

void Mesh::FreeAll() {
    *this = Mesh();
}

Box3 Mesh::getBoundingBox(const Matrix3* matrix) const {
    Box3 box;
    for (const Point3& p : verts)
        box += matrix ? matrix->PointTransform(p) : p;
    return box;
}
