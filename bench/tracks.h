#pragma once

#include <cstdint>
#include <vector>

#include "controllers/transform_control.h"

// One animated transform, in the ways in which it could be kept: this system's controller and
// a sorted vector. Both take a key at their end.

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

// What the host does to write and read a transform controller.
void SetMatrix(Control& control, TimeValue t, const Matrix3& matrix);
Matrix3 MatrixAt(Control& control, TimeValue t, const Matrix3& parent = {});

class OurTrack {
  public:
    void Append(TimeValue t, const Matrix3& value) { control_->AddKey({0, t, value}); }
    void Set(TimeValue t, const Matrix3& value) { SetMatrix(*control_, t, value); }
    Matrix3 InWorld(TimeValue t, const Matrix3& parent) { return MatrixAt(*control_, t, parent); }

  private:
    OwnedControl<OpenTransform> control_{new OpenTransform};
};

class VectorTrack {
  public:
    void Append(TimeValue t, const Matrix3& value);

  private:
    std::vector<TarvoKey<Matrix3>> keys_;
};

template <class Track>
void Fill(Track& track, std::int64_t keys) {
    for (std::int64_t index = 0; index < keys; ++index)
        track.Append(TimeOfKey(index), PoseOfKey(index));
}
