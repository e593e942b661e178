#pragma once

#include "controllers/scalar_control.h"
#include "controllers/transform_control.h"
#include "headless/session.h"
#include "host/animate.h"
#include "host/hold.h"
#include "host/interface.h"
#include "tests/support/matrices.h"
#include "tests/support/watcher.h"

// A controller whose table a test looks into, and that it can fill directly.
template <class C>
struct Open : C {
    using C::AddKey;
    using C::table;
};
using OpenScalar = Open<ScalarControl>;
using OpenTransform = Open<TransformControl>;

class ControlTest : public testing::Test {
  protected:
    headless::Session host_;
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

using Times = std::vector<TimeValue>;

template <class T>
Times TimesOf(const KeyTable<T>& table) {
    Times times;
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

// Of a transform, under the parent that is given.
template <class Value = float>
Value ValueAt(Control& control, TimeValue t, Value value = {}) {
    Interval valid = FOREVER;
    control.GetValue(t, &value, valid, CTRL_ABSOLUTE);
    return value;
}
