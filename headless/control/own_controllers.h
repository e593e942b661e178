#pragma once

#include "host/control.h"

// The host's own controllers. Each is new, and the caller's until something refers to it.
namespace headless {

Control* NewPositionRotationScale();

// Goes straight from key to key.
Control* NewLinearFloat();

// By class; null if the host has no such one.
Control* NewControl(SClass_ID superClass, Class_ID classId);

}  // namespace headless
