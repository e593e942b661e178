#include <memory>
#include <numbers>
#include <utility>

#include "control/factory.h"
#include "host/animate.h"
#include "objects/own_classes.h"
#include "objects/save_plain.h"
#include "objects/undoable.h"

namespace headless {
namespace {

constexpr std::uint16_t kSwitchesChunk = 1;
constexpr float kFieldOfView = std::numbers::pi_v<float> / 4;  // radians
constexpr float kTargetDistance = 160;                         // host units

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
    SClass_ID SuperClassID() override { return kParametersSuperClass; }
    Class_ID ClassID() override { return kFreeCameraClassId; }
    void DeleteThis() override { delete this; }

    int NumSubs() override { return kCount; }
    Animatable* SubAnim(int index) override { return GetReference(index); }
    HostString SubAnimName(int index) override {
        if (index == kFov) return "FOV";
        return index == kTDist ? "Target Distance" : "";
    }
    bool AssignController(Animatable* controller, int index) override {
        if (!controller || controller->SuperClassID() != CTRL_FLOAT_CLASS_ID || !Exists(index))
            return false;
        ReplaceReference(index, static_cast<Control*>(controller));
        return true;
    }

    int NumRefs() override { return kCount; }
    RefTargetHandle GetReference(int index) override {
        return Exists(index) ? controllers_[index] : nullptr;
    }
    void SetReference(int index, RefTargetHandle target) override {
        if (Exists(index)) controllers_[index] = static_cast<Control*>(target);
    }

    RefTargetHandle Clone(RemapDir& remap) override {
        auto* copy = new CameraParameters;
        for (int i = 0; i < kCount; ++i)
            copy->ReplaceReference(i, remap.CloneRef(controllers_[i]));
        BaseClone(this, copy, remap);
        return copy;
    }

  private:
    static constexpr SClass_ID kParametersSuperClass = 8;

    static bool Exists(int index) { return index >= 0 && index < kCount; }

    Control* controllers_[kCount] = {};
};

// What shows in a viewport, and how the field of view is measured.
struct Switches {
    std::int32_t fovType = 0;
    std::int32_t cone = 0;
    std::int32_t horizon = 0;
    std::int32_t enabled = 0;
};

class FreeCamera final : public CameraObject {
  public:
    void SetFOV(TimeValue t, float radians) override {
        parameters_->SetValue(CameraParameters::kFov, t, radians);
    }
    float GetFOV(TimeValue t, Interval& valid) override {
        return parameters_->Value(CameraParameters::kFov, t, valid);
    }
    int SetFOVType(int type) override {
        if (type < 0 || type > 2) return 0;
        Switch(&Switches::fovType, type);
        return 1;
    }
    int GetFOVType() override { return switches_->fovType; }
    void SetTDist(TimeValue t, float hostUnits) override {
        parameters_->SetValue(CameraParameters::kTDist, t, hostUnits);
    }
    float GetTDist(TimeValue t, Interval& valid) override {
        return parameters_->Value(CameraParameters::kTDist, t, valid);
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
        if (index == 0) parameters_ = static_cast<CameraParameters*>(target);
    }

    RefTargetHandle Clone(RemapDir& remap) override {
        auto* copy = new FreeCamera;
        *copy->switches_ = *switches_;
        copy->ReplaceReference(0, remap.CloneRef(parameters_));
        BaseClone(this, copy, remap);
        return copy;
    }

    IOResult Save(ISave* save) override {
        SaveChunk(*save, kSwitchesChunk, *switches_);
        return IO_OK;
    }

  private:
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

CameraObject* NewFreeCamera() {
    auto* parameters = new CameraParameters;
    for (int i = 0; i < CameraParameters::kCount; ++i)
        parameters->ReplaceReference(i, NewControl(CTRL_FLOAT_CLASS_ID, kLinearFloatClassId));
    // What a camera starts with is no key, also in animate mode.
    SuspendAnimate();
    parameters->SetValue(CameraParameters::kFov, 0, kFieldOfView);
    parameters->SetValue(CameraParameters::kTDist, 0, kTargetDistance);
    ResumeAnimate();
    auto* camera = new FreeCamera;
    camera->ReplaceReference(0, parameters);
    return camera;
}

}  // namespace headless
