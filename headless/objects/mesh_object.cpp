#include <algorithm>
#include <span>
#include <utility>

#include "headless/objects/node_drawing.h"
#include "headless/objects/own_classes.h"
#include "headless/references/fresh.h"
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

class MeshObject final : public TriObject {
  public:
    explicit MeshObject(HostString kind) : kind_(std::move(kind)) {}

    Mesh& GetMesh() override { return mesh_; }

    void GetClassName(HostString& name) override { name = GetObjectName(); }
    HostString GetObjectName() override { return kMeshName; }
    void InitNodeName(HostString& name) override { name = kind_; }
    void DeleteThis() override { delete this; }

    int Display(TimeValue t, INode* node, ViewExp* view, int) override {
        return DisplayMesh(mesh_, t, node, view);
    }
    int HitTest(TimeValue t, INode* node, int type, int crossing, int flags, IPoint2* point,
                ViewExp* view) override {
        return HitTestMesh(mesh_, {t, node, type, crossing, flags, point, view});
    }
    void GetLocalBoundBox(TimeValue, INode*, ViewExp*, Box3& box) override {
        box = mesh_.getBoundingBox();
    }

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

}  // namespace

TriObject* NewMeshObject(const char* kind) {
    return new MeshObject(kind);
}

}  // namespace headless

TriObject* CreateNewTriObject() {
    return headless::NewMeshObject(headless::kMeshName);
}
