#pragma once

#include "host/control.h"

namespace headless {

// A new controller of the host's own, the caller's until something refers to it; null if the host
// has no such class.
Control* NewControl(SClass_ID superClass, Class_ID classId);

}  // namespace headless
