#pragma once

#include <cstdint>
#include <vector>

#include "host/box3.h"
#include "host/host_api.h"
#include "host/point3.h"

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

    std::vector<Point3> verts;
    std::vector<Face> faces;
    std::vector<Point3> tVerts;
    std::vector<TVFace> tvFace;

  private:
    bool edgeList_ = false;
};
