#include <cmath>
#include <optional>

#include "headless/objects/node_drawing.h"
#include "headless/objects/own_classes.h"
#include "headless/primitives.h"
#include "headless/storage/plain_chunks.h"
#include "host/time.h"

namespace headless {
namespace {

constexpr std::uint16_t kSpeedChunk = 1;  // degrees per second

constexpr double kRadiansPerDegree = 0.017453292519943295;

double RadiansAt(TimeValue t, float degreesPerSecond) {
    const double ticksPerSecond = static_cast<double>(GetTicksPerFrame()) * GetFrameRate();
    return degreesPerSecond * (t / ticksPerSecond) * kRadiansPerDegree;
}

// A straight line along z from `start`, `height` long, becomes an arc over `angle` towards +y, of
// the same length. Places beside the line stay as far from it.
Point3 Bent(const Point3& p, double start, double height, double angle) {
    const double along = p.z - start;
    const double turned = height > 0 ? angle * (along / height) : 0;
    if (turned == 0) return p;
    const double half = std::sin(turned / 2);
    const double y = p.y * std::cos(turned) + along * (2 * half * half / turned);
    const double z = start + along * (std::sin(turned) / turned) - p.y * std::sin(turned);
    return {p.x, static_cast<float>(y), static_cast<float>(z)};
}

void BendMesh(Mesh& mesh, double angle) {
    const Box3 box = mesh.getBoundingBox();
    const double height = double{box.pmax.z} - box.pmin.z;
    for (Point3& p : mesh.verts)
        p = Bent(p, box.pmin.z, height, angle);
}

class Bend final : public Visible<Object, Mesh> {
  public:
    explicit Bend(float degreesPerSecond)
        : degreesPerSecond_(std::isfinite(degreesPerSecond) ? degreesPerSecond : 0) {}
    ~Bend() override {
        if (bent_) bent_->DeleteThis();
    }

    // The triangle mesh stays the bend's, at one address, and shows the time that was asked last.
    ObjectState Eval(TimeValue t) override {
        auto* const base = base_ ? dynamic_cast<TriObject*>(base_->Eval(t).obj) : nullptr;
        if (!base) return {this};
        if (!bent_) bent_ = CreateNewTriObject();
        const Moment moment{t, RadiansAt(t, degreesPerSecond_)};
        if (shown_ != moment) {
            bent_->GetMesh() = SeenAt(t, nullptr);
            shown_ = moment;
        }
        return {bent_};
    }

    int CanConvertToType(Class_ID type) override {
        if (type != kTriObjectClassId) return Object::CanConvertToType(type);
        return base_ ? base_->CanConvertToType(type) : 0;
    }

    Object* ConvertToType(TimeValue t, Class_ID type) override {
        if (type != kTriObjectClassId) return Object::ConvertToType(t, type);
        if (CanConvertToType(type) == 0) return nullptr;
        TriObject* const object = CreateNewTriObject();
        object->GetMesh() = SeenAt(t, nullptr);
        return object;
    }

    SClass_ID SuperClassID() override { return GEOMOBJECT_CLASS_ID; }
    Class_ID ClassID() override { return kBendClassId; }
    void GetClassName(HostString& name) override { name = GetObjectName(); }
    HostString GetObjectName() override { return "Bend"; }
    void InitNodeName(HostString& name) override {
        base_ ? base_->InitNodeName(name) : Object::InitNodeName(name);
    }
    void DeleteThis() override { delete this; }

    int NumRefs() override { return 1; }
    RefTargetHandle GetReference(int index) override { return index == 0 ? base_ : nullptr; }
    void SetReference(int index, RefTargetHandle target) override {
        if (index != 0) return;
        base_ = dynamic_cast<Object*>(target);
        shown_.reset();
    }
    RefResult NotifyRefChanged(Interval, RefTargetHandle, PartID&, RefMessage) override {
        shown_.reset();
        return REF_SUCCEED;
    }

    RefTargetHandle Clone(RemapDir& remap) override {
        auto* copy = new Bend(degreesPerSecond_);
        copy->ReplaceReference(0, remap.CloneRef(base_));
        BaseClone(this, copy, remap);
        return copy;
    }

    IOResult Save(ISave* save) override {
        SaveChunk(*save, kSpeedChunk, degreesPerSecond_);
        return IO_OK;
    }

    IOResult Load(ILoad* load) override {
        degreesPerSecond_ = 0;
        shown_.reset();
        return LoadChunks(*load, [&](std::uint16_t id) {
            float stored = 0;
            if (id != kSpeedChunk || !LoadValue(*load, stored) || !std::isfinite(stored))
                return false;
            degreesPerSecond_ = stored;
            return true;
        });
    }

  private:
    // Empty without a base, or with one that is no triangles.
    Mesh SeenAt(TimeValue t, INode*) override {
        Object* const base = base_ ? base_->Eval(t).obj : nullptr;
        Mesh mesh = base ? MeshOf(*base, t) : Mesh();
        BendMesh(mesh, RadiansAt(t, degreesPerSecond_));
        return mesh;
    }

    struct Moment {
        TimeValue t;
        double radians;
        bool operator==(const Moment&) const = default;
    };

    float degreesPerSecond_;
    Object* base_ = nullptr;
    TriObject* bent_ = nullptr;    // made at the first evaluation that needs it
    std::optional<Moment> shown_;  // by `bent_`; empty if that is out of date
};

}  // namespace

Object* NewBend(Object* base, float degreesPerSecond) {
    auto* bend = new Bend(degreesPerSecond);
    bend->ReplaceReference(0, base);
    return bend;
}

}  // namespace headless
