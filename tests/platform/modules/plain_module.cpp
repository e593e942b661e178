// A module without entry point or resources, as a Core can be.
#include "platform/win32.h"

extern "C" __attribute__((visibility("default"))) int answer() {
    return GetTickCount() == 0 ? 0 : 42;
}
