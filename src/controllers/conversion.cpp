#include "controllers/conversion.h"

#include "controllers/host_controls.h"
#include "controllers/scalar_control.h"
#include "controllers/transform_control.h"
#include "host/animate.h"
#include "host/interface.h"
#include "undo/own_step.h"

namespace {

// Animate mode in its lifetime, and afterwards what there was before.
class KeyedWrites {
  public:
    KeyedWrites() {
        SuspendAnimate();
        AnimateOn();
    }
    ~KeyedWrites() {
        AnimateOff();
        ResumeAnimate();
    }
    KeyedWrites(const KeyedWrites&) = delete;
    KeyedWrites& operator=(const KeyedWrites&) = delete;
};

void Write(Control& target, TimeValue t, float value, int commit) {
    target.SetValue(t, &value, commit, CTRL_ABSOLUTE);
}

void Write(Control& target, TimeValue t, const Matrix3& value, int commit) {
    SetXFormPacket packet;
    packet.command = XFORM_SET;
    packet.tmAxis = value;
    target.SetValue(t, &packet, commit, CTRL_ABSOLUTE);
}

// The keys are read past the cached key, which can hold another value at a key's time: one that was
// set later, or without animate mode.
template <class Source>
void CopyKeys(Source& source, Control& target) {
    for (int i = 0; i < source.NumKeys(); ++i) {
        const TimeValue t = source.GetKeyTime(i);
        Write(target, t, source.GetKeyAtTime(t).value, 1);
    }
}

// Where the host's motion panel shows the controller, it shows the new one from here on.
void RebuildMotionPanel(IObjParam* panel) {
    if (!panel) return;
    panel->SetCommandPanelTaskMode(TASK_MODE_UTILITY);
    panel->SetCommandPanelTaskMode(TASK_MODE_MOTION);
}

}  // namespace

void ConvertToScalarController(ScalarControl* source) {
    if (!source->HasDependents()) return;
    const OwnStep step("Convert to Scalar controller");
    const NewControl target = MakeControl(CTRL_FLOAT_CLASS_ID, kLinearFloatClassId);
    if (!target) return;
    // The present value, before animate mode goes on: a key only if it is on already.
    Write(*target, 0, source->GetCurrentKey().value, 0);
    {
        const KeyedWrites keyed;
        if (source->NumKeys() != 0 && source->GetKeyTime(0) > 0)
            Write(*target, 0, source->GetKeyAtTime(0).value, 1);
        CopyKeys(*source, *target);
    }
    target->TransferReferences(source, true);
}

void ConvertToPRSController(TransformControl* source) {
    if (!source->HasDependents()) return;
    IObjParam* const panel = source->EditInterface();
    {
        const OwnStep step("Convert to PRS controller");
        const NewControl target = MakeControl(CTRL_MATRIX3_CLASS_ID, kPositionRotationScaleClassId);
        if (!target) return;
        Write(*target, 0, source->GetCurrentKey().value, 0);
        {
            const KeyedWrites keyed;
            CopyKeys(*source, *target);
        }
        target->TransferReferences(source, true);
    }
    RebuildMotionPanel(panel);
}

void ConvertAllControllers() {
    TransformControl::liveInstances.ForEachFromLast(
        [](TransformControl& control) { ConvertToPRSController(&control); });
    ScalarControl::liveInstances.ForEachFromLast(
        [](ScalarControl& control) { ConvertToScalarController(&control); });
}
