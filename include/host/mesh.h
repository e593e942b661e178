#pragma once

#include <cstdint>
#include <vector>

#include "host/box3.h"
#include "host/graphics_window.h"
#include "host/host_api.h"
#include "host/point3.h"
#include "platform/win32.h"

// A triangle: vertex indices, smoothing group, edges that show.
class HOST_API Face {
  public:
    void setVerts(int a, int b, int c);
    void setEdgeVisFlags(int ab, int bc, int ca);
    bool getEdgeVis(int edge) const;
    void setSmGroup(std::uint32_t group) { smGroup = group; }

    std::uint32_t v[3] = {0, 0, 0};
    std::uint32_t smGroup = 0;
    std::uint32_t flags = 0;
};

// A triangle of texture-vertex indices.
class HOST_API TVFace {
  public:
    void setTVerts(int a, int b, int c);

    std::uint32_t t[3] = {0, 0, 0};
};

// The host's triangle mesh: tables that are sized by the set operations and then written. A `keep`
// of 0 drops what was there. The caller keeps indices inside the tables.
class HOST_API Mesh {
  public:
    bool setNumVerts(int count, int keep = 0, int synchronize = 1);
    bool setNumFaces(int count, int keep = 0, int synchronize = 1);
    bool setNumTVerts(int count, int keep = 0);
    bool setNumTVFaces(int count, int keep = 0, int oldCount = 0);

    int getNumVerts() const { return static_cast<int>(verts.size()); }
    int getNumFaces() const { return static_cast<int>(faces.size()); }
    int getNumTVerts() const { return static_cast<int>(tVerts.size()); }
    int getNumTVFaces() const { return static_cast<int>(tvFace.size()); }

    void setVert(int index, const Point3& p);
    void setTVert(int index, const Point3& uvw);

    void EnableEdgeList(int enable);
    bool IsEdgeListEnabled() const { return edgeList_; }
    void InvalidateGeomCache();
    void FreeAll();

    // Of the vertices, transformed first if there is a matrix.
    Box3 getBoundingBox(const Matrix3* matrix = nullptr) const;

    // Non-zero: the ray hits a face, from either side. The nearest hit is `at` lengths of the
    // ray's direction away, and `norm` is the unit normal of its face. After a miss both are as
    // they were. Faces that name missing vertices are passed over, here and below.
    int IntersectRay(const Ray& ray, float& at, Point3& norm) const;

    // Draws as the window's limits, transform and colours say: edges that show in the line colour,
    // faces in the fill colour. Without a `clip` no part is clipped away. The result is 0.
    int render(GraphicsWindow* window, Material* materials, RECT* clip, int components,
               int materialCount = 1);

    // Non-zero: as the window shows the mesh, some of it lies in the region.
    int select(GraphicsWindow* window, Material* materials, HitRegion* region, int abortOnHit,
               int materialCount = 1);

    std::vector<Point3> verts;
    std::vector<Face> faces;
    std::vector<Point3> tVerts;
    std::vector<TVFace> tvFace;

  private:
    bool edgeList_ = false;
};
