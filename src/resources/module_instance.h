#pragma once

#include "platform/win32.h"

// The module whose resources are this library's, as its entry point was told; null before that.
HINSTANCE ModuleInstance();
void SetModuleInstance(HINSTANCE module);
