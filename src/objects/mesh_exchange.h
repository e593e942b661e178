#pragma once

#include <array>

#include "host/mesh.h"
#include "tvl/mesh.h"

// Replaces a host mesh by a mesh of the Core's: narrowed to single precision, the first two edges
// of each face visible, the edge list enabled. A mesh without texture vertices gets one at
// (0, 0, 0). A face that names a vertex that is not there becomes (0, 0, 0), and a texture face
// that names a missing texture vertex likewise; a mesh without vertices gets no faces.
void WriteMesh(const TVL::CMesh& from, Mesh& into);

// A mesh of the Core's with what a host mesh holds, widened to doubles, in the host's order. A face
// without texture face has texture indices of 0.
TVL::CMesh ReadMesh(const Mesh& from);

// The vertices and the vertex indices of the faces alone, with every edge visible.
void WriteDisplayMesh(const TVL::CMesh& from, Mesh& into);

// Between the Core's points and the host's; neither space nor units change.
Point3 Narrowed(const std::array<double, 3>& point);
std::array<double, 3> Widened(const Point3& point);
