#include "host/object.h"
#include "objects/save_plain.h"

namespace headless {
namespace {

constexpr std::uint16_t kVerticesChunk = 1;
constexpr std::uint16_t kFacesChunk = 2;
constexpr std::uint16_t kTextureVerticesChunk = 3;
constexpr std::uint16_t kTextureFacesChunk = 4;

class MeshObject final : public TriObject {
  public:
    Mesh& GetMesh() override { return mesh_; }

    void GetClassName(HostString& name) override { name = GetObjectName(); }
    HostString GetObjectName() override { return "Mesh"; }
    void DeleteThis() override { delete this; }

    void GetLocalBoundBox(TimeValue, INode*, ViewExp*, Box3& box) override {
        box = mesh_.getBoundingBox();
    }

    RefTargetHandle Clone(RemapDir& remap) override {
        auto* copy = new MeshObject;
        copy->mesh_ = mesh_;
        BaseClone(this, copy, remap);
        return copy;
    }

    IOResult Save(ISave* save) override {
        SaveTable(*save, kVerticesChunk, mesh_.verts);
        SaveTable(*save, kFacesChunk, mesh_.faces);
        SaveTable(*save, kTextureVerticesChunk, mesh_.tVerts);
        SaveTable(*save, kTextureFacesChunk, mesh_.tvFace);
        return IO_OK;
    }

  private:
    Mesh mesh_;
};

}  // namespace
}  // namespace headless

TriObject* CreateNewTriObject() {
    return new headless::MeshObject;
}
