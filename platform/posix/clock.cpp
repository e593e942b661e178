#include <chrono>
#include <optional>

#include "platform/testing.h"

namespace {

std::optional<DWORD> standingAt;

}  // namespace

namespace platform {

void SetTickCount(DWORD milliseconds) {
    standingAt = milliseconds;
}
void ClearTickCount() {
    standingAt.reset();
}

}  // namespace platform

extern "C" DWORD GetTickCount() {
    if (standingAt) return *standingAt;
    const auto sinceStart = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<DWORD>(
        std::chrono::duration_cast<std::chrono::milliseconds>(sinceStart).count());
}
