#pragma once

#include <array>

#include "tvl/extendable.h"
#include "tvl/matrix4.h"
#include "tvl/mesh.h"

namespace TVL {

// A snapshot is lent by a node for one purpose and, the helper's apart, one moment of scene time:
// acquire, use, release, all through the node (see node.h). It is no copy: every read asks the host
// at that moment and every write goes to the host at once. It stays the node's; a snapshot that is
// still acquired when its node dies remains valid memory and does nothing more.
//
// Spaces. Core space is Y up, right-handed, in metres. A Core point (x, y, z) is the host point
// (s·x, −s·z, s·y), s being the host units in one metre. Object space stays in host units.
// The order of the virtual operations in each class is part of the contract.

// Where a node is. Written inside a recording, a transform becomes a key at the snapshot's time.
class CSnapshot : public CExtendable {
  public:
    // Relative to the parent's object space, translation in host units; for a node without parent
    // the same matrix as the world transform.
    virtual void SetLocalTransform(const CMatrix4& transform) = 0;
    virtual CMatrix4 GetLocalTransform() = 0;

    // From object space (host units) to Core world space (metres). It therefore carries the factor
    // 1/s: an unscaled node has rows of length 1/s. A Core that places a node keeps that row
    // length, or its nodes come out scaled.
    virtual CMatrix4 GetWorldTransform() = 0;
    virtual void SetWorldTransform(const CMatrix4& transform) = 0;

    // Seconds, exactly as given at acquisition. The host works at a whole tick: ticks per frame ×
    // (frames per second × seconds), truncated toward zero.
    virtual double GetTime() = 0;

    virtual ~CSnapshot() = default;
};

// The look and the geometry of a guide object.
class CSnapshot_Helper : public CExtendable {
  public:
    // Of a triangle mesh, as CreateHelperNode makes one; without effect on other objects. Undo does
    // not bring back what was there.
    virtual void SetMesh(CMesh mesh) = 0;

    // Each channel from 0 to 1; beyond that the low 8 bits of channel × 255 are what shows.
    virtual void SetColor(float red, float green, float blue) = 0;

    // Both only on the adaptor's own helper objects; without effect elsewhere.
    virtual void SetWireframe(bool wireframe) = 0;
    virtual void SetBackfaceCull(bool backfaceCull) = 0;

    virtual ~CSnapshot_Helper() = default;
};

// A camera's lens. Angles in degrees, the target distance in host units. With the adaptor's own
// controllers a parameter answers for the time at which it was read last with what it was given
// last, whatever time that was for. So a Core that has written at many times reads once at the last
// of them; from then on every time answers with what was written there.
class CSnapshot_Lens : public CExtendable {
  public:
    virtual void SetFieldOfView(double degrees) = 0;
    virtual double GetFieldOfView() = 0;

    // 0 across the width, 1 across the height, 2 across the diagonal; other values do nothing.
    virtual int GetFieldOfViewType() = 0;
    virtual void SetFieldOfViewType(int type) = 0;

    virtual void SetTargetDistance(double hostUnits) = 0;
    virtual double GetTargetDistance() = 0;

    virtual double GetTime() = 0;
    virtual CMatrix4 GetLensTransform() = 0;  // always the identity

    virtual ~CSnapshot_Lens() = default;
};

// A node's geometry at the time of acquisition, in object space and host units. But where the host
// has to convert a node to triangles and the option kDynamicMeshes is off, it does so once, at
// the time that is asked for first, and all snapshots of the node share that mesh until a recording
// begins or ends or the scene is replaced. An empty mesh is read, writes do nothing and no ray hits
// if the object cannot become triangles, and once the node, its object or the shared mesh is gone.
class CSnapshot_Mesh : public CExtendable {
  public:
    // Changes what the node shows if its object is a triangle mesh itself, else this mesh alone.
    virtual void SetMesh(CMesh mesh) = 0;
    virtual CMesh GetMesh() = 0;

    // The nearest hit of a ray in object space. `distance` and `normal` may be null; after a miss
    // they carry no meaning.
    virtual bool IntersectRay(const std::array<double, 3>& origin,
                              const std::array<double, 3>& direction, double* distance,
                              std::array<double, 3>* normal) = 0;

    virtual ~CSnapshot_Mesh() = default;
};

// The curves of a shape, in object space and host units. A parameter runs from 0 to 1 along the
// length of the current curve.
class CSnapshot_Shape : public CExtendable {
  public:
    virtual int GetCurveCount() = 0;

    // The current one. An index beyond those that there are is held to them when it is set. A
    // snapshot that is lent again keeps what was set on it last; a new one has the first.
    virtual int GetCurve() = 0;
    virtual void SetCurve(int index) = 0;

    virtual double GetCurveLength() = 0;
    virtual std::array<double, 3> GetCurvePoint(double parameter) = 0;
    virtual std::array<double, 3> GetCurveTangent(double parameter) = 0;  // unit length

    virtual ~CSnapshot_Shape() = default;
};

}  // namespace TVL
