#pragma once

#include <memory>

#include "controllers/scalar_control.h"
#include "controllers/transform_control.h"
#include "headless/session.h"
#include "tests/support/matrices.h"
#include "tests/support/test_class.h"

// Controllers whose table a test looks into, and that it can fill directly.
struct OpenScalar : ScalarControl {
    using BaseControl::AddKey;
    using BaseControl::table;
};
struct OpenTransform : TransformControl {
    using BaseControl::AddKey;
    using BaseControl::table;
};

// A running host that knows both controllers.
class ControlWorld {
  public:
    ControlWorld();
    ~ControlWorld();

    headless::Session& Host() { return *session_; }

  private:
    TestClass scalars_;
    TestClass transforms_;
    std::unique_ptr<headless::Session> session_;
};

// A controller that only a test knows; freed with the undo stream that may name it.
template <class C>
class Alone {
  public:
    Alone() : control_(new C) {}
    ~Alone();
    Alone(const Alone&) = delete;
    Alone& operator=(const Alone&) = delete;

    C& operator*() const { return *control_; }
    C* operator->() const { return control_; }

  private:
    C* control_;
};

void FlushUndo();

template <class C>
Alone<C>::~Alone() {
    FlushUndo();
    control_->DeleteThis();
}

// A write as the host makes it: a world matrix under a parent at the origin.
void SetWorld(Control& control, TimeValue t, const Matrix3& world);

float FloatAt(Control& control, TimeValue t);
Matrix3 MatrixAt(Control& control, TimeValue t, const Matrix3& parent = Matrix3());
