#include "host/control.h"

Control::~Control() = default;

void Control::Copy(Control*) {}

int Control::ChangeParents(TimeValue, const Matrix3&, const Matrix3&, const Matrix3&) {
    return 0;
}
