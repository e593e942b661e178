#include <algorithm>
#include <cmath>
#include <numbers>

#include "headless/primitives.h"
#include "objects/own_classes.h"
#include "storage/plain_chunks.h"

namespace headless {
namespace {

constexpr std::uint16_t kShapeChunk = 1;
constexpr int kFewestSegments = 3;
constexpr int kMostSegments = 200;

// Rings of vertices from the south pole to the north pole, which are one vertex each.
class SphereMesh {
  public:
    SphereMesh(float radius, int segments) : radius_(radius), segments_(segments) {}

    void BuildInto(Mesh& mesh) const {
        const int inner = segments_ * (Rings() - 1);
        mesh.setNumVerts(inner + 2);
        mesh.setNumFaces(2 * inner);
        mesh.setVert(0, {0, 0, -radius_});
        for (int ring = 1; ring < Rings(); ++ring) {
            for (int i = 0; i < segments_; ++i)
                mesh.setVert(Index(ring, i), Place(ring, i));
        }
        mesh.setVert(inner + 1, {0, 0, radius_});
        int face = 0;
        for (int ring = 0; ring < Rings(); ++ring) {
            for (int i = 0; i < segments_; ++i) {
                if (ring > 0)
                    SetFace(mesh, face++, Index(ring, i), Index(ring, i + 1), Index(ring + 1, i));
                if (ring + 1 < Rings())
                    SetFace(mesh, face++, Index(ring, i + 1), Index(ring + 1, i + 1),
                            Index(ring + 1, i));
            }
        }
    }

  private:
    int Rings() const { return std::max(2, segments_ / 2); }

    int Index(int ring, int i) const {
        if (ring == 0) return 0;
        if (ring == Rings()) return segments_ * (Rings() - 1) + 1;
        return 1 + (ring - 1) * segments_ + i % segments_;
    }

    Point3 Place(int ring, int i) const {
        const float up = std::numbers::pi_v<float> *
                         (static_cast<float>(ring) / static_cast<float>(Rings()) - 0.5F);
        const float around =
            2 * std::numbers::pi_v<float> * static_cast<float>(i) / static_cast<float>(segments_);
        const float width = radius_ * std::cos(up);
        return {width * std::cos(around), width * std::sin(around), radius_ * std::sin(up)};
    }

    static void SetFace(Mesh& mesh, int face, int a, int b, int c) {
        Face& target = mesh.faces[static_cast<std::size_t>(face)];
        target.setVerts(a, b, c);
        target.setEdgeVisFlags(1, 1, 1);
        target.setSmGroup(1);
    }

    float radius_;
    int segments_;
};

class Sphere final : public Object {
  public:
    Sphere(float radius, int segments)
        : shape_{std::isfinite(radius) ? radius : 0,
                 std::clamp(segments, kFewestSegments, kMostSegments)} {}

    int CanConvertToType(Class_ID type) override {
        return type == kTriObjectClassId || Object::CanConvertToType(type) != 0 ? 1 : 0;
    }

    Object* ConvertToType(TimeValue t, Class_ID type) override {
        if (type != kTriObjectClassId) return Object::ConvertToType(t, type);
        TriObject* mesh = CreateNewTriObject();
        SphereMesh(shape_.radius, shape_.segments).BuildInto(mesh->GetMesh());
        return mesh;
    }

    SClass_ID SuperClassID() override { return GEOMOBJECT_CLASS_ID; }
    Class_ID ClassID() override { return kSphereClassId; }
    void GetClassName(HostString& name) override { name = GetObjectName(); }
    HostString GetObjectName() override { return "Sphere"; }
    void DeleteThis() override { delete this; }

    void GetLocalBoundBox(TimeValue, INode*, ViewExp*, Box3& box) override {
        const float r = shape_.radius;
        box = Box3({-r, -r, -r}, {r, r, r});
    }

    RefTargetHandle Clone(RemapDir& remap) override {
        auto* copy = new Sphere(shape_.radius, shape_.segments);
        BaseClone(this, copy, remap);
        return copy;
    }

    IOResult Save(ISave* save) override {
        SaveChunk(*save, kShapeChunk, shape_);
        return IO_OK;
    }

    IOResult Load(ILoad* load) override {
        shape_ = {};
        return LoadChunks(*load, [&](std::uint16_t id) {
            Shape stored;
            if (id != kShapeChunk || !LoadValue(*load, stored) || !stored.CanBeBuilt())
                return false;
            shape_ = stored;
            return true;
        });
    }

  private:
    struct Shape {
        float radius = 0;
        std::int32_t segments = kFewestSegments;

        bool CanBeBuilt() const {
            return std::isfinite(radius) && segments >= kFewestSegments &&
                   segments <= kMostSegments;
        }
    };
    Shape shape_;
};

}  // namespace

Object* NewSphere(float radius, int segments) {
    return new Sphere(radius, segments);
}

}  // namespace headless
