// A module without entry point or resources, as a Core can be.
#include "platform/modules.h"
#include "platform/win32.h"

MODULE_ROUTINE int answer() {
    return GetTickCount() == 0 ? 0 : 42;
}
