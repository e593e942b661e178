#include "tests/controllers/control_world.h"

#include "host/interface.h"

namespace {

template <class C>
TestClass Class() {
    return {"controller of a test", C::kSuperClassID, C::kClassID,
            [] { return static_cast<Animatable*>(new C); }};
}

}  // namespace

ControlWorld::ControlWorld()
    : scalars_(Class<OpenScalar>()),
      transforms_(Class<OpenTransform>()),
      session_(std::make_unique<headless::Session>()) {
    session_->RegisterClass(&scalars_);
    session_->RegisterClass(&transforms_);
    session_->Start();
}

// The session goes before the class descriptors.
ControlWorld::~ControlWorld() {
    session_.reset();
}

void FlushUndo() {
    GetCOREInterface()->FlushUndoBuffer();
}

void SetWorld(Control& control, TimeValue t, const Matrix3& world) {
    SetXFormPacket packet;
    packet.command = XFORM_SET;
    packet.tmAxis = world;
    control.SetValue(t, &packet, 1, CTRL_ABSOLUTE);
}

float FloatAt(Control& control, TimeValue t) {
    float value = 0;
    Interval valid = FOREVER;
    control.GetValue(t, &value, valid, CTRL_ABSOLUTE);
    return value;
}

Matrix3 MatrixAt(Control& control, TimeValue t, const Matrix3& parent) {
    Matrix3 value = parent;
    Interval valid = FOREVER;
    control.GetValue(t, &value, valid, CTRL_ABSOLUTE);
    return value;
}
