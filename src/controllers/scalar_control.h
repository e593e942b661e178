#pragma once

#include "controllers/base_control.h"
#include "foundation/live_instances.h"

// A float over time, linear between keys, constant beyond them. A value that is set without a key
// lasts until an evaluation at another time than the cached key's.
class ScalarControl : public BaseControl<float> {
  public:
    static constexpr SClass_ID kSuperClassID = CTRL_FLOAT_CLASS_ID;
    static constexpr Class_ID kClassID{0x2ADE2E71, 0x21430FA0};

    // Every ScalarControl alive.
    static LiveInstances<ScalarControl> liveInstances;

    ScalarControl();
    ~ScalarControl() override;

    void BeginEditParams(IObjParam*, std::uint32_t, Animatable*) override {}
    void EndEditParams(IObjParam*, std::uint32_t, Animatable*) override {}

    // `value` is a float; CTRL_RELATIVE adds.
    void GetValue(TimeValue t, void* value, Interval& valid,
                  GetSetMethod method = CTRL_ABSOLUTE) override;
    void SetValue(TimeValue t, void* value, int commit = 1,
                  GetSetMethod method = CTRL_ABSOLUTE) override;

    Key GetKeyAtTime(TimeValue t) override;

  private:
    friend class LiveInstances<ScalarControl>;
    LiveLink<ScalarControl> liveLink;
};
