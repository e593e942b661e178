#include <cmath>
#include <memory>
#include <numbers>
#include <utility>

#include "headless/control/animate_mode.h"
#include "headless/control/own_controllers.h"
#include "headless/hold/graveyard.h"
#include "headless/hold/undo_stream.h"
#include "headless/objects/camera_frame.h"
#include "headless/objects/own_classes.h"
#include "headless/storage/plain_chunks.h"

namespace headless {
namespace {

constexpr std::uint16_t kSwitchesChunk = 1;
constexpr float kFieldOfView = std::numbers::pi_v<float> / 4;  // radians
constexpr float kTargetDistance = 160;                         // host units

constexpr double kAspect = 16.0 / 9;    // of the picture that the cone is drawn for
constexpr float kShortCone = 1.0F / 8;  // of the target distance, where the cone does not show

// The animated parameters, each a float controller.
class CameraParameters final : public ReferenceTarget {
  public:
    enum Parameter { kFov = 0, kTDist = 1, kCount = 2 };

    float Value(Parameter parameter, TimeValue t, Interval& valid) {
        float value = 0;
        if (Control* controller = controllers_[parameter])
            controller->GetValue(t, &value, valid, CTRL_ABSOLUTE);
        return value;
    }

    void SetValue(Parameter parameter, TimeValue t, float value) {
        if (Control* controller = controllers_[parameter])
            controller->SetValue(t, &value, 1, CTRL_ABSOLUTE);
    }

    void GetClassName(HostString& name) override { name = "Camera parameters"; }
    SClass_ID SuperClassID() override { return kCameraParametersSuperClass; }
    Class_ID ClassID() override { return kFreeCameraClassId; }
    void DeleteThis() override { delete this; }

    int NumSubs() override { return kCount; }
    Animatable* SubAnim(int index) override { return GetReference(index); }
    HostString SubAnimName(int index) override {
        if (index == kFov) return "FOV";
        return index == kTDist ? "Target Distance" : "";
    }
    bool AssignController(Animatable* controller, int index) override {
        auto* number = AsFloat(controller);
        if (!number || !Exists(index)) return false;
        ReplaceReference(index, number);
        return true;
    }

    int NumRefs() override { return kCount; }
    RefTargetHandle GetReference(int index) override {
        return Exists(index) ? controllers_[index] : nullptr;
    }
    void SetReference(int index, RefTargetHandle target) override {
        if (Exists(index)) controllers_[index] = AsFloat(target);
    }

    RefTargetHandle Clone(RemapDir& remap) override {
        Fresh<CameraParameters> copy(new CameraParameters);
        for (int i = 0; i < kCount; ++i)
            copy->ReplaceReference(i, remap.CloneRef(controllers_[i]));
        BaseClone(this, copy.get(), remap);
        return copy.release();
    }

  private:
    static bool Exists(int index) { return index >= 0 && index < kCount; }

    // Null for anything else that a scene file may refer to.
    static Control* AsFloat(Animatable* animatable) {
        auto* controller = dynamic_cast<Control*>(animatable);
        return controller && controller->SuperClassID() == CTRL_FLOAT_CLASS_ID ? controller
                                                                               : nullptr;
    }

    Control* controllers_[kCount] = {};
};

// What shows in a viewport, and how the field of view is measured.
struct Switches {
    std::int32_t fovType = 0;
    std::int32_t cone = 0;
    std::int32_t horizon = 0;
    std::int32_t enabled = 0;

    bool HasKnownType() const { return fovType >= 0 && fovType <= 2; }
};

class FreeCamera final : public Visible<CameraObject, std::vector<Line>> {
  public:
    void SetFOV(TimeValue t, float radians) override { Set(CameraParameters::kFov, t, radians); }
    float GetFOV(TimeValue t, Interval& valid) override {
        return Get(CameraParameters::kFov, t, valid);
    }
    int SetFOVType(int type) override {
        if (!Switches{.fovType = type}.HasKnownType()) return 0;
        Switch(&Switches::fovType, type);
        return 1;
    }
    int GetFOVType() override { return switches_->fovType; }
    void SetTDist(TimeValue t, float hostUnits) override {
        Set(CameraParameters::kTDist, t, hostUnits);
    }
    float GetTDist(TimeValue t, Interval& valid) override {
        return Get(CameraParameters::kTDist, t, valid);
    }
    void SetConeState(int show) override { Switch(&Switches::cone, show); }
    void SetHorzLineState(int show) override { Switch(&Switches::horizon, show); }
    void Enable(int enable) override { Switch(&Switches::enabled, enable); }

    void GetClassName(HostString& name) override { name = GetObjectName(); }
    Class_ID ClassID() override { return kFreeCameraClassId; }
    HostString GetObjectName() override { return "Camera"; }
    void DeleteThis() override { delete this; }

    int NumSubs() override { return 1; }
    Animatable* SubAnim(int index) override { return index == 0 ? parameters_ : nullptr; }
    HostString SubAnimName(int index) override { return index == 0 ? "Parameters" : ""; }

    int NumRefs() override { return 1; }
    RefTargetHandle GetReference(int index) override { return index == 0 ? parameters_ : nullptr; }
    void SetReference(int index, RefTargetHandle target) override {
        if (index == 0) parameters_ = dynamic_cast<CameraParameters*>(target);
    }

    RefTargetHandle Clone(RemapDir& remap) override {
        Fresh<FreeCamera> copy(new FreeCamera);
        *copy->switches_ = *switches_;
        copy->ReplaceReference(0, remap.CloneRef(parameters_));
        BaseClone(this, copy.get(), remap);
        return copy.release();
    }

    IOResult Save(ISave* save) override {
        SaveChunk(*save, kSwitchesChunk, *switches_);
        return IO_OK;
    }

    IOResult Load(ILoad* load) override {
        *switches_ = {};
        return LoadChunks(*load, [&](std::uint16_t id) {
            Switches stored;
            if (id != kSwitchesChunk || !LoadValue(*load, stored) || !stored.HasKnownType())
                return false;
            *switches_ = stored;
            return true;
        });
    }

  private:
    // A camera from a damaged file can be without parameters.
    float Get(CameraParameters::Parameter parameter, TimeValue t, Interval& valid) {
        return parameters_ ? parameters_->Value(parameter, t, valid) : 0;
    }
    void Set(CameraParameters::Parameter parameter, TimeValue t, float value) {
        if (parameters_) parameters_->SetValue(parameter, t, value);
    }

    // A camera whose cone does not show keeps a short one, to be seen and taken by.
    std::vector<Line> SeenAt(TimeValue t, INode* node) override {
        std::vector<Line> lines;
        Interval valid = FOREVER;
        const float distance = GetTDist(t, valid);
        if (!std::isfinite(distance) || distance <= 0) return lines;
        const CameraOpening opening = OpeningOf(double{GetFOV(t, valid)}, GetFOVType(), kAspect);
        AddCone(FrameAt(switches_->cone != 0 ? distance : distance * kShortCone, opening), lines);
        if (switches_->horizon != 0)
            AddHorizon(FrameAt(distance, opening), node ? node->GetObjectTM(t) : Matrix3(), lines);
        return lines;
    }

    // The record names the switches alone, since the camera can be freed by whoever made it.
    void Switch(std::int32_t Switches::*which, int value) {
        Undoably([switches = switches_, which, other = std::int32_t{value}]() mutable {
            std::swap((*switches).*which, other);
        });
    }

    CameraParameters* parameters_ = nullptr;
    std::shared_ptr<Switches> switches_ = std::make_shared<Switches>();
};

}  // namespace

ReferenceTarget* NewCameraParameters() {
    Fresh<CameraParameters> parameters(new CameraParameters);
    for (int i = 0; i < CameraParameters::kCount; ++i) {
        const Fresh<Control> number(NewLinearFloat());
        parameters->ReplaceReference(i, number.get());
    }
    // What a camera starts with is no key, also in animate mode.
    const WithoutKeys withoutKeys;
    parameters->SetValue(CameraParameters::kFov, 0, kFieldOfView);
    parameters->SetValue(CameraParameters::kTDist, 0, kTargetDistance);
    return parameters.release();
}

CameraObject* NewFreeCamera() {
    Fresh<FreeCamera> camera(new FreeCamera);
    const Fresh<ReferenceTarget> parameters(NewCameraParameters());
    camera->ReplaceReference(0, parameters.get());
    return camera.release();
}

}  // namespace headless
