#pragma once

#include "headless/control/keyed.h"
#include "host/control.h"

namespace headless {

// The host's controller of one number, which goes straight from key to key.
class LinearFloat final : public Keyed<Control, float> {
  public:
    void GetClassName(HostString& name) override { name = "Linear Float"; }
    SClass_ID SuperClassID() override { return CTRL_FLOAT_CLASS_ID; }
    Class_ID ClassID() override { return kLinearFloatClassId; }
    void DeleteThis() override { delete this; }

    IOResult Save(ISave* save) override;
    IOResult Load(ILoad* load) override;
    RefTargetHandle Clone(RemapDir& remap) override;

    void GetValue(TimeValue t, void* value, Interval& valid, GetSetMethod method) override;
    void SetValue(TimeValue t, void* value, int commit, GetSetMethod method) override;
};

}  // namespace headless
