#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "controllers/scalar_control.h"
#include "controllers/transform_control.h"
#include "headless/session.h"
#include "host/interface.h"
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
    ControlWorld() {
        session_.RegisterClass(&scalars_);
        session_.RegisterClass(&transforms_);
        session_.Start();
    }
    headless::Session& Host() { return session_; }

  private:
    template <class C>
    static TestClass Class() {
        return {"controller of a test", C::kSuperClassID, C::kClassID,
                [] { return static_cast<Animatable*>(new C); }};
    }

    TestClass scalars_ = Class<OpenScalar>();
    TestClass transforms_ = Class<OpenTransform>();
    headless::Session session_;
};

// A controller that only a test knows; freed with the undo stream that may name it.
struct FreeWithUndo {
    void operator()(Control* control) const {
        GetCOREInterface()->FlushUndoBuffer();
        control->DeleteThis();
    }
};
template <class C>
struct Alone : std::unique_ptr<C, FreeWithUndo> {
    Alone() : std::unique_ptr<C, FreeWithUndo>(new C) {}
};

template <class T>
std::vector<TimeValue> TimesOf(const KeyTable<T>& table) {
    std::vector<TimeValue> times;
    for (const TarvoKey<T>& key : table.keys)
        times.push_back(key.time);
    return times;
}

// A write as the host makes it: a world matrix under a parent at the origin.
inline void SetWorld(Control& control, TimeValue t, const Matrix3& world) {
    SetXFormPacket packet;
    packet.command = XFORM_SET;
    packet.tmAxis = world;
    control.SetValue(t, &packet, 1, CTRL_ABSOLUTE);
}

template <class Value>
Value ValueAt(Control& control, TimeValue t, Value value) {
    Interval valid = FOREVER;
    control.GetValue(t, &value, valid, CTRL_ABSOLUTE);
    return value;
}
inline float FloatAt(Control& control, TimeValue t) {
    return ValueAt(control, t, 0.0F);
}
inline Matrix3 MatrixAt(Control& control, TimeValue t, const Matrix3& parent = Matrix3()) {
    return ValueAt(control, t, parent);
}
