#include <algorithm>
#include <cmath>
#include <numbers>

#include "headless/objects/node_drawing.h"
#include "headless/objects/own_classes.h"
#include "headless/primitives.h"
#include "headless/storage/plain_chunks.h"

namespace headless {
namespace {

constexpr std::uint16_t kShapeChunk = 1;
constexpr int kFewestSegments = 3;
constexpr int kMostSegments = 1024;

// Rings of vertices from the south pole to the north pole, which are one vertex each. The texture
// is a chart: around the equator along u, from pole to pole along v, open where it comes around.
class SphereMesh {
  public:
    SphereMesh(float radius, int segments) : radius_(radius), segments_(segments) {}

    void BuildInto(Mesh& mesh) const {
        SetPlaces(mesh);
        SetTexture(mesh);
        SetFaces(mesh);
    }

  private:
    // A place of the grid, `ring` of Rings() from south to north, `i` around.
    struct Corner {
        int ring;
        int i;
    };

    int Rings() const { return std::max(2, segments_ / 2); }
    int InnerCount() const { return segments_ * (Rings() - 1); }

    int Vertex(const Corner& corner) const {
        if (corner.ring == 0) return 0;
        if (corner.ring == Rings()) return InnerCount() + 1;
        return 1 + (corner.ring - 1) * segments_ + corner.i % segments_;
    }

    int TextureVertex(const Corner& corner) const {
        return corner.ring * (segments_ + 1) + corner.i;
    }

    void SetPlaces(Mesh& mesh) const {
        mesh.setNumVerts(InnerCount() + 2);
        mesh.setVert(0, {0, 0, -radius_});
        for (int ring = 1; ring < Rings(); ++ring) {
            for (int i = 0; i < segments_; ++i)
                mesh.setVert(Vertex({ring, i}), Place(ring, i));
        }
        mesh.setVert(InnerCount() + 1, {0, 0, radius_});
    }

    Point3 Place(int ring, int i) const {
        const float up = std::numbers::pi_v<float> *
                         (static_cast<float>(ring) / static_cast<float>(Rings()) - 0.5F);
        const float around =
            2 * std::numbers::pi_v<float> * static_cast<float>(i) / static_cast<float>(segments_);
        const float width = radius_ * std::cos(up);
        return {width * std::cos(around), width * std::sin(around), radius_ * std::sin(up)};
    }

    void SetTexture(Mesh& mesh) const {
        mesh.setNumTVerts((Rings() + 1) * (segments_ + 1));
        for (int ring = 0; ring <= Rings(); ++ring) {
            for (int i = 0; i <= segments_; ++i)
                mesh.setTVert(TextureVertex({ring, i}),
                              {static_cast<float>(i) / static_cast<float>(segments_),
                               static_cast<float>(ring) / static_cast<float>(Rings()), 0});
        }
    }

    // Two faces for each square of the grid, one at the poles. The last edge, which does not show,
    // is the square's diagonal.
    void SetFaces(Mesh& mesh) const {
        mesh.setNumFaces(2 * InnerCount());
        mesh.setNumTVFaces(2 * InnerCount());
        std::size_t face = 0;
        for (int ring = 0; ring < Rings(); ++ring) {
            for (int i = 0; i < segments_; ++i) {
                const Corner south{ring, i}, southEast{ring, i + 1};
                const Corner north{ring + 1, i}, northEast{ring + 1, i + 1};
                if (ring > 0) SetFace(mesh, face++, north, south, southEast);
                if (ring + 1 < Rings()) SetFace(mesh, face++, southEast, northEast, north);
            }
        }
    }

    void SetFace(Mesh& mesh, std::size_t face, const Corner& a, const Corner& b,
                 const Corner& c) const {
        mesh.faces[face].setVerts(Vertex(a), Vertex(b), Vertex(c));
        mesh.faces[face].setEdgeVisFlags(1, 1, 0);
        mesh.faces[face].setSmGroup(1);
        mesh.tvFace[face].setTVerts(TextureVertex(a), TextureVertex(b), TextureVertex(c));
    }

    float radius_;
    int segments_;
};

class Sphere final : public Visible<Object, Mesh&> {
  public:
    Sphere(float radius, int segments)
        : shape_{std::isfinite(radius) ? std::abs(radius) : 0,
                 std::clamp(segments, kFewestSegments, kMostSegments)} {}

    int CanConvertToType(Class_ID type) override {
        return type == kTriObjectClassId || Object::CanConvertToType(type) != 0 ? 1 : 0;
    }

    Object* ConvertToType(TimeValue t, Class_ID type) override {
        if (type != kTriObjectClassId) return Object::ConvertToType(t, type);
        TriObject* object = CreateNewTriObject();
        object->GetMesh() = SeenAt(t, nullptr);
        return object;
    }

    SClass_ID SuperClassID() override { return GEOMOBJECT_CLASS_ID; }
    Class_ID ClassID() override { return kSphereClassId; }
    void GetClassName(HostString& name) override { name = GetObjectName(); }
    HostString GetObjectName() override { return "Sphere"; }
    void DeleteThis() override { delete this; }
    void FreeCaches() override { shown_.FreeAll(); }

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
        FreeCaches();
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
            return std::isfinite(radius) && radius >= 0 && segments >= kFewestSegments &&
                   segments <= kMostSegments;
        }
    };

    // Built when it is first asked for.
    Mesh& SeenAt(TimeValue, INode*) override {
        if (shown_.faces.empty()) SphereMesh(shape_.radius, shape_.segments).BuildInto(shown_);
        return shown_;
    }

    Shape shape_;
    Mesh shown_;
};

}  // namespace

Object* NewSphere(float radius, int segments) {
    return new Sphere(radius, segments);
}

}  // namespace headless
