#pragma once

#include "controllers/base_control.h"
#include "controllers/pose_path.h"
#include "foundation/live_instances.h"
#include "platform/win32.h"

class IObjParam;

// A whole transform over time, one matrix per key, relative to the parent. Between keys scale,
// rotation and translation are interpolated apart, in the space of the parent's matrix, so that the
// path in the world is that of the keys wherever the parent goes.
// The order of the first two fields is part of the contract.
class TransformControl : public BaseControl<Matrix3> {
  public:
    static constexpr SClass_ID kSuperClassID = CTRL_MATRIX3_CLASS_ID;
    static constexpr Class_ID kClassID{0x708B15A4, 0x2AFA7C85};

    // Every TransformControl alive.
    static LiveInstances<TransformControl> liveInstances;

    TransformControl();
    ~TransformControl() override;

    // The page with the button that converts this controller.
    void BeginEditParams(IObjParam* ip, std::uint32_t flags, Animatable* previous) override;
    void EndEditParams(IObjParam* ip, std::uint32_t flags, Animatable* next) override;

    // Every key becomes value × oldParent × inverse(newParent), at all times; no record is put,
    // since the host's own brings back the controller as it was. With no hold, nothing will take it
    // back: what earlier records hold would then be relative to another parent, and they do nothing
    // from here on.
    int ChangeParents(TimeValue t, const Matrix3& oldParent, const Matrix3& newParent,
                      const Matrix3& world) override;

    // `value` is a Matrix3 that holds the parent's matrix; CTRL_RELATIVE gives the world matrix,
    // CTRL_ABSOLUTE the local one.
    void GetValue(TimeValue t, void* value, Interval& valid,
                  GetSetMethod method = CTRL_ABSOLUTE) override;

    // `value` is a SetXFormPacket.
    void SetValue(TimeValue t, void* value, int commit = 1,
                  GetSetMethod method = CTRL_ABSOLUTE) override;

    // Evaluated without a parent. A key from beyond the ends of the table keeps its flags.
    Key GetKeyAtTime(TimeValue t) override;

    // The IObjParam that opened the page last; null if none ever did.
    IObjParam* EditInterface() const { return editInterface; }

  private:
    friend class LiveInstances<TransformControl>;

    // Makes the cached key that at `t`, interpolated in the space of `parent`, which is elsewhere,
    // and relative to it.
    void EvaluateInParent(TimeValue t, const Matrix3& parent);

    // Makes a page that is still open forget this controller.
    void LeavePage();

    // The flags at `t` where `key` is the only one that counts.
    std::uint32_t FlagsAlone(TimeValue t, const Key& key) const;

    HWND rollupWindow = nullptr;
    IObjParam* editInterface = nullptr;  // the host's; stays after EndEditParams
    LiveLink<TransformControl> liveLink;
    KeptPath keptPath;
};
