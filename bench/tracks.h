#pragma once

#include <cstdint>

#include "controllers/transform_control.h"

// What a take is made of, and a controller that has one.

inline constexpr TimeValue kKeySpacing = 160;  // ticks, a frame

// The keys of a take: turning and moving, at rising times. `index` is the key's place.
Matrix3 PoseOfKey(std::int64_t index);
inline TimeValue TimeOfKey(std::int64_t index) {
    return static_cast<TimeValue>(index * kKeySpacing);
}

// A controller that nothing refers to.
template <class C>
class OwnedControl {
  public:
    explicit OwnedControl(C* control) : control_(control) {}
    ~OwnedControl() { control_->DeleteThis(); }
    OwnedControl(const OwnedControl&) = delete;
    OwnedControl& operator=(const OwnedControl&) = delete;
    C* operator->() const { return control_; }
    C& operator*() const { return *control_; }

  private:
    C* control_;
};

struct OpenTransform : TransformControl {
    using BaseControl::AddKey;
    using BaseControl::table;
};

void FillWithTake(OpenTransform& control, std::int64_t keys);

// As the host reads a transform controller: the pose in the world, below a parent.
Matrix3 MatrixAt(Control& control, TimeValue t, const Matrix3& parent);
