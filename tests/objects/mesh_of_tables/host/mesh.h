#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>

#include "host/box3.h"
#include "host/graphics_window.h"
#include "host/host_api.h"
#include "host/point3.h"
#include "platform/win32.h"

// A host's mesh of another form than the stand-in's: plain tables with their counts beside them. It
// takes the place of include/host/mesh.h. What a test does not run has no body.

class Face {
  public:
    void setVerts(int a, int b, int c) { std::ranges::copy(std::array{a, b, c}, v); }
    void setEdgeVisFlags(int ab, int bc, int ca) {
        flags = static_cast<std::uint32_t>(ab | bc << 1 | ca << 2);
    }
    void setSmGroup(std::uint32_t group) { smGroup = group; }

    std::uint32_t v[3];
    std::uint32_t smGroup;
    std::uint32_t flags;
};

class TVFace {
  public:
    void setTVerts(int a, int b, int c) { std::ranges::copy(std::array{a, b, c}, t); }

    std::uint32_t t[3];
};

class Mesh {
  public:
    bool setNumVerts(int count, int = 0, int = 1) { return Resize(verts, numVerts, count); }
    bool setNumFaces(int count, int = 0, int = 1) { return Resize(faces, numFaces, count); }
    bool setNumTVerts(int count, int = 0) { return Resize(tVerts, numTVerts, count); }
    bool setNumTVFaces(int count, int = 0, int = 0) { return Resize(tvFace, numTVFaces, count); }

    int getNumVerts() const { return numVerts; }
    int getNumFaces() const { return numFaces; }
    int getNumTVerts() const { return numTVerts; }
    int getNumTVFaces() const { return numTVFaces; }

    void setVert(int index, const Point3& p) { verts[static_cast<std::size_t>(index)] = p; }
    void setTVert(int index, const Point3& uvw) { tVerts[static_cast<std::size_t>(index)] = uvw; }

    void EnableEdgeList(int enable) { hasEdges = enable != 0; }
    void InvalidateGeomCache();
    void FreeAll();
    Box3 getBoundingBox() const;
    int IntersectRay(const Ray& ray, float& at, Point3& norm) const;
    int render(GraphicsWindow*, Material*, RECT* clip, int components, int materialCount);
    int select(GraphicsWindow*, Material*, HitRegion*, int abortOnHit, int materialCount);

    std::unique_ptr<Point3[]> verts;
    std::unique_ptr<Face[]> faces;
    std::unique_ptr<Point3[]> tVerts;
    std::unique_ptr<TVFace[]> tvFace;
    int numVerts = 0;
    int numFaces = 0;
    int numTVerts = 0;
    int numTVFaces = 0;
    bool hasEdges = false;
    int most = 1000;  // of what a table holds; more is refused, and the table stays as it is

  private:
    template <class T>
    bool Resize(std::unique_ptr<T[]>& table, int& number, int count) {
        if (count > most) return false;
        table = std::make_unique<T[]>(static_cast<std::size_t>(count));
        number = count;
        return true;
    }
};
