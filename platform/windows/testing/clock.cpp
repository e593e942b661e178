#include <optional>

#include "platform/testing.h"
#include "platform/win32.h"

namespace platform {
namespace {

std::optional<DWORD> stopped;

DWORD WINAPI TellTicks() {
    return stopped ? *stopped : static_cast<DWORD>(GetTickCount64());
}

}  // namespace

void SetTickCount(DWORD milliseconds) {
    stopped = milliseconds;
}

void ClearTickCount() {
    stopped.reset();
}

}  // namespace platform

// The place through which a program calls GetTickCount, filled here rather than by the loader. A
// program that sets the count is linked with this one instead of the system's.
extern "C" DWORD(WINAPI* const __imp_GetTickCount)() = &platform::TellTicks;
