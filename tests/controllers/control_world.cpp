#include "controllers/control_world.h"

#include <cmath>
#include <numbers>

#include "host/interface.h"

ControlWorld::ControlWorld() : session_(std::make_unique<headless::Session>()) {
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

Matrix3 MovedBy(float x) {
    Matrix3 matrix;
    matrix.SetTranslate(Point3(x, 0, 0));
    return matrix;
}

Matrix3 TurnedAboutZ(double degrees) {
    const double angle = degrees * std::numbers::pi / 180;
    const auto c = static_cast<float>(std::cos(angle));
    const auto s = static_cast<float>(std::sin(angle));
    return Matrix3(Point3(c, s, 0), Point3(-s, c, 0), Point3(0, 0, 1), Point3());
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
