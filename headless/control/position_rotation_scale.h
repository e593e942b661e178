#pragma once

#include "headless/control/keyed.h"
#include "headless/values/transform_parts.h"
#include "host/control.h"

namespace headless {

// The host's own transform controller: position, rotation and scale relative to the parent, a track
// for each, which are its sub-animatables. The keys are theirs; it has none itself.
class PositionRotationScale final : public Control {
  public:
    PositionRotationScale();

    void GetClassName(HostString& name) override { name = "Position/Rotation/Scale"; }
    SClass_ID SuperClassID() override { return CTRL_MATRIX3_CLASS_ID; }
    Class_ID ClassID() override { return kPositionRotationScaleClassId; }
    void DeleteThis() override { delete this; }

    int NumSubs() override { return 3; }
    Animatable* SubAnim(int index) override;
    HostString SubAnimName(int index) override;

    IOResult Save(ISave* save) override;
    IOResult Load(ILoad* load) override;
    RefTargetHandle Clone(RemapDir& remap) override;

    // Puts no record: the host's own brings back the controller as it was.
    int ChangeParents(TimeValue t, const Matrix3& oldParent, const Matrix3& newParent,
                      const Matrix3& world) override;

    void GetValue(TimeValue t, void* value, Interval& valid, GetSetMethod method) override;
    void SetValue(TimeValue t, void* value, int commit, GetSetMethod method) override;

  private:
    // One of the three. It is part of the controller and ends with it.
    template <class T>
    class Part final : public Keyed<Animatable, T> {
      public:
        Part(ReferenceTarget& owner, SClass_ID superClass, const char* name)
            : Keyed<Animatable, T>(owner), superClass_(superClass), name_(name) {}

        void GetClassName(HostString& name) override { name = name_ + " Track"; }
        SClass_ID SuperClassID() override { return superClass_; }
        Class_ID ClassID() override { return {kLinearFloatClassId.partA, superClass_}; }
        void DeleteThis() override {}
        const HostString& Name() const { return name_; }

      private:
        SClass_ID superClass_;
        HostString name_;
    };

    void Clear();  // what a new one holds
    TransformParts PartsAt(TimeValue t) const;

    Part<Point3> position_;
    Part<Quat> rotation_;
    Part<Point3> scale_;
};

}  // namespace headless
