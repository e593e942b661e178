#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

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

// Refers to a controller, and acts when that tells of a change.
class Dependent : public ReferenceMaker {
  public:
    explicit Dependent(std::function<void()> act) : act_(std::move(act)) {}

    SClass_ID SuperClassID() override { return 0; }
    Class_ID ClassID() override { return {}; }
    void DeleteThis() override {}
    int NumRefs() override { return 1; }
    RefTargetHandle GetReference(int) override { return target_; }
    void SetReference(int, RefTargetHandle target) override { target_ = target; }
    RefResult NotifyRefChanged(Interval, RefTargetHandle, PartID&, RefMessage) override {
        act_();
        return REF_SUCCEED;
    }

  private:
    std::function<void()> act_;
    RefTargetHandle target_ = nullptr;
};

template <class T>
std::vector<TimeValue> TimesOf(const KeyTable<T>& table) {
    std::vector<TimeValue> times;
    for (const TarvoKey<T>& key : table.keys)
        times.push_back(key.time);
    return times;
}

// A write as the host makes it: a world matrix under a parent at the origin.
void SetWorld(Control& control, TimeValue t, const Matrix3& world);

float FloatAt(Control& control, TimeValue t);
Matrix3 MatrixAt(Control& control, TimeValue t, const Matrix3& parent = Matrix3());
