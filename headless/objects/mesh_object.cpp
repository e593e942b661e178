#include <algorithm>
#include <cmath>
#include <span>
#include <utility>

#include "headless/hold/graveyard.h"
#include "headless/objects/node_drawing.h"
#include "headless/objects/own_classes.h"
#include "headless/primitives.h"
#include "headless/storage/plain_chunks.h"
#include "host/object.h"

namespace headless {
namespace {

constexpr std::uint16_t kVerticesChunk = 1;
constexpr std::uint16_t kFacesChunk = 2;
constexpr std::uint16_t kTextureVerticesChunk = 3;
constexpr std::uint16_t kTextureFacesChunk = 4;

constexpr char kMeshName[] = "Mesh";

bool AreBelow(std::span<const std::uint32_t> indices, std::size_t count) {
    return std::all_of(indices.begin(), indices.end(), [count](auto i) { return i < count; });
}

// No face reaches beyond the vertices.
bool IsSound(const Mesh& mesh) {
    return std::all_of(mesh.faces.begin(), mesh.faces.end(),
                       [&](const Face& face) { return AreBelow(face.v, mesh.verts.size()); }) &&
           std::all_of(mesh.tvFace.begin(), mesh.tvFace.end(),
                       [&](const TVFace& face) { return AreBelow(face.t, mesh.tVerts.size()); });
}

class MeshObject final : public Visible<TriObject, Mesh&> {
  public:
    explicit MeshObject(HostString kind) : kind_(std::move(kind)) {}

    Mesh& GetMesh() override { return mesh_; }

    void GetClassName(HostString& name) override { name = GetObjectName(); }
    HostString GetObjectName() override { return kMeshName; }
    void InitNodeName(HostString& name) override { name = kind_; }
    void DeleteThis() override { delete this; }

    RefTargetHandle Clone(RemapDir& remap) override {
        Fresh<MeshObject> copy(new MeshObject(kind_));
        copy->mesh_ = mesh_;
        BaseClone(this, copy.get(), remap);
        return copy.release();
    }

    IOResult Save(ISave* save) override {
        SaveTable(*save, kVerticesChunk, mesh_.verts);
        SaveTable(*save, kFacesChunk, mesh_.faces);
        SaveTable(*save, kTextureVerticesChunk, mesh_.tVerts);
        SaveTable(*save, kTextureFacesChunk, mesh_.tvFace);
        return IO_OK;
    }

    // A mesh that cannot be believed leaves an empty one.
    IOResult Load(ILoad* load) override {
        mesh_.FreeAll();
        const IOResult result =
            LoadChunks(*load, [&](std::uint16_t id) { return LoadTables(*load, id); });
        if (result == IO_OK && IsSound(mesh_)) return IO_OK;
        mesh_.FreeAll();
        return IO_ERROR;
    }

  private:
    Mesh& SeenAt(TimeValue, INode*) override { return mesh_; }

    bool LoadTables(ILoad& load, std::uint16_t id) {
        switch (id) {
            case kVerticesChunk:
                return LoadTable(load, mesh_.verts);
            case kFacesChunk:
                return LoadTable(load, mesh_.faces);
            case kTextureVerticesChunk:
                return LoadTable(load, mesh_.tVerts);
            case kTextureFacesChunk:
                return LoadTable(load, mesh_.tvFace);
            default:
                return false;
        }
    }

    HostString kind_;  // what it was made as; not stored
    Mesh mesh_;
};

constexpr int kMostDivisions = 1000;

// A vertex and a texture vertex for each corner of the grid, row by row.
void SetCorners(Mesh& mesh, float side, int divisions) {
    const int count = (divisions + 1) * (divisions + 1);
    mesh.setNumVerts(count);
    mesh.setNumTVerts(count);
    for (int i = 0; i < count; ++i) {
        const int column = i % (divisions + 1);
        const int row = i / (divisions + 1);
        const float u = static_cast<float>(column) / static_cast<float>(divisions);
        const float v = static_cast<float>(row) / static_cast<float>(divisions);
        mesh.setVert(i, {side * (u - 0.5F), side * (v - 0.5F), 0});
        mesh.setTVert(i, {u, v, 0});
    }
}

void SetFace(Mesh& mesh, int index, int a, int b, int c) {
    const auto at = static_cast<std::size_t>(index);
    mesh.faces[at].setVerts(a, b, c);
    mesh.faces[at].setEdgeVisFlags(1, 1, 0);
    mesh.faces[at].setSmGroup(1);
    mesh.tvFace[at].setTVerts(a, b, c);
}

// Two faces for each square; the diagonal between them, the last edge of both, does not show.
void SetFaces(Mesh& mesh, int divisions) {
    mesh.setNumFaces(2 * divisions * divisions);
    mesh.setNumTVFaces(2 * divisions * divisions);
    int face = 0;
    for (int row = 0; row < divisions; ++row) {
        for (int column = 0; column < divisions; ++column) {
            const int corner = row * (divisions + 1) + column;
            const int above = corner + divisions + 1;
            SetFace(mesh, face++, corner, corner + 1, above + 1);
            SetFace(mesh, face++, above + 1, above, corner);
        }
    }
}

}  // namespace

TriObject* NewGround(float side, int divisions) {
    TriObject* object = new MeshObject("Ground");
    const int count = std::clamp(divisions, 1, kMostDivisions);
    SetCorners(object->GetMesh(), std::isfinite(side) ? side : 0, count);
    SetFaces(object->GetMesh(), count);
    return object;
}

}  // namespace headless

TriObject* CreateNewTriObject() {
    return new headless::MeshObject(headless::kMeshName);
}
