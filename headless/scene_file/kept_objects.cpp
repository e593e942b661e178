#include <algorithm>
#include <cstdint>
#include <optional>
#include <utility>

#include "headless/control/keyframe_chunk.h"
#include "headless/scene_file/build_objects.h"
#include "host/control.h"
#include "host/object.h"

namespace headless {
namespace {

// What is kept of the object; copies share the bytes.
struct Stored {
    StoredClass type;
    std::shared_ptr<const std::vector<std::byte>> bytes;
    std::size_t references = 0;
};

IOResult WriteBytes(ISave& save, const std::vector<std::byte>& bytes) {
    constexpr std::size_t kMost = std::size_t{1} << 30;  // in one call
    IOResult result = IO_OK;
    for (std::size_t at = 0; at < bytes.size() && result == IO_OK; at += kMost) {
        const std::size_t count = std::min(kMost, bytes.size() - at);
        result = save.Write(&bytes[at], static_cast<std::uint32_t>(count), nullptr);
    }
    return result;
}

template <class Base>
class Kept : public Base {
  public:
    explicit Kept(Stored stored) : stored_(std::move(stored)), references_(stored_.references) {}

    void GetClassName(HostString& name) override { name = stored_.type.name; }
    SClass_ID SuperClassID() override { return stored_.type.superClass; }
    Class_ID ClassID() override { return stored_.type.id; }
    void DeleteThis() override { delete this; }

    IOResult Save(ISave* save) override { return WriteBytes(*save, *stored_.bytes); }

    int NumRefs() override { return static_cast<int>(references_.size()); }
    RefTargetHandle GetReference(int index) override {
        return Exists(index) ? references_[static_cast<std::size_t>(index)] : nullptr;
    }
    void SetReference(int index, RefTargetHandle target) override {
        if (Exists(index)) references_[static_cast<std::size_t>(index)] = target;
    }

  protected:
    template <class Kind>
    RefTargetHandle CopyAs(RemapDir& remap) {
        auto* copy = new Kind(stored_);
        this->BaseClone(this, copy, remap);
        for (int i = 0; i < NumRefs(); ++i)
            copy->ReplaceReference(i, remap.CloneRef(GetReference(i)));
        return copy;
    }

    const std::vector<std::byte>& Bytes() const { return *stored_.bytes; }

  private:
    bool Exists(int index) const {
        return index >= 0 && static_cast<std::size_t>(index) < references_.size();
    }

    Stored stored_;
    std::vector<RefTargetHandle> references_;
};

// Of no use to the host.
class KeptTarget final : public Kept<ReferenceTarget> {
  public:
    using Kept::Kept;
    RefTargetHandle Clone(RemapDir& remap) override { return CopyAs<KeptTarget>(remap); }
};

template <class Base>
class KeptObject final : public Kept<Base> {
  public:
    using Kept<Base>::Kept;
    RefTargetHandle Clone(RemapDir& remap) override {
        return this->template CopyAs<KeptObject<Base>>(remap);
    }
    SClass_ID SuperClassID() override { return Kept<Base>::SuperClassID(); }

    // Whoever goes by the ids of a triangle mesh asks for this first, and finds no mesh.
    int CanConvertToType(Class_ID) override { return 0; }
    Object* ConvertToType(TimeValue, Class_ID) override { return nullptr; }
    HostString GetObjectName() override {
        HostString name;
        this->GetClassName(name);
        return name;
    }
};

class KeptShape final : public Kept<ShapeObject> {
  public:
    using Kept::Kept;
    RefTargetHandle Clone(RemapDir& remap) override { return CopyAs<KeptShape>(remap); }
    int NumberOfCurves() override { return 0; }
    float LengthOfCurve(TimeValue, int) override { return 0; }
    Point3 InterpCurve3D(TimeValue, int, float, int) override { return {}; }
};

class KeptCamera final : public Kept<CameraObject> {
  public:
    using Kept::Kept;
    RefTargetHandle Clone(RemapDir& remap) override { return CopyAs<KeptCamera>(remap); }
    void SetFOV(TimeValue, float) override {}
    float GetFOV(TimeValue, Interval&) override { return 0; }
    int SetFOVType(int) override { return 0; }
    int GetFOVType() override { return 0; }
    void SetTDist(TimeValue, float) override {}
    float GetTDist(TimeValue, Interval&) override { return 0; }
    void SetConeState(int) override {}
    void SetHorzLineState(int) override {}
    void Enable(int) override {}
};

// Gives what it is added to, or the value that changes nothing.
template <class Value>
class KeptControl final : public Kept<Control> {
  public:
    using Kept::Kept;
    RefTargetHandle Clone(RemapDir& remap) override { return CopyAs<KeptControl>(remap); }
    void GetValue(TimeValue, void* value, Interval&, GetSetMethod method) override {
        if (method == CTRL_ABSOLUTE) *static_cast<Value*>(value) = Value();
    }
    void SetValue(TimeValue, void*, int, GetSetMethod) override {}

    // The plug-in's keyframes can be told without it.
    int NumKeys() override { return keys_ ? static_cast<int>(keys_->Count()) : 0; }
    TimeValue GetKeyTime(int index) override {
        return index >= 0 && index < NumKeys() ? keys_->Time(static_cast<std::size_t>(index)) : 0;
    }

  private:
    std::optional<KeyframeChunk> keys_ =
        IsKeyframes(this->ClassID()) ? KeyframeChunk::In(Bytes()) : std::nullopt;
};

}  // namespace

ReferenceTarget* NewKeptObject(const StoredClass& type, std::vector<std::byte> bytes,
                               std::size_t references, bool isNodeObject) {
    Stored stored{type, std::make_shared<const std::vector<std::byte>>(std::move(bytes)),
                  references};
    switch (type.superClass) {
        case CTRL_MATRIX3_CLASS_ID:
            return new KeptControl<Matrix3>(std::move(stored));
        case CTRL_FLOAT_CLASS_ID:
            return new KeptControl<float>(std::move(stored));
        case CAMERA_CLASS_ID:
            return new KeptCamera(std::move(stored));
        case SHAPE_CLASS_ID:
            return new KeptShape(std::move(stored));
        case HELPER_CLASS_ID:
            return new KeptObject<HelperObject>(std::move(stored));
        case GEOMOBJECT_CLASS_ID:
            return new KeptObject<Object>(std::move(stored));
        default:
            break;
    }
    if (isNodeObject) return new KeptObject<Object>(std::move(stored));
    return new KeptTarget(std::move(stored));
}

}  // namespace headless
