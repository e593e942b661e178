#pragma once

#include "platform/module.h"

namespace platform {

// The module's dialog of that number; null if it has none. A null module is the program.
const DialogTemplate* FindDialog(HMODULE module, LPCSTR name);

}  // namespace platform
