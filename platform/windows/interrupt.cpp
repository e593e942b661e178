#include "platform/interrupt.h"

#include <atomic>
#include <string>

#include "platform/win32.h"

namespace platform {
namespace {

std::atomic<bool> wanted = false;
int living = 0;

// Under a name of the process. The copy that makes it came first.
HANDLE mark = nullptr;
std::atomic<bool> isFirst = false;

HANDLE MakeMark() {
    const std::wstring name = L"Local\\lumiset-interrupt-" + std::to_wstring(GetCurrentProcessId());
    const HANDLE made = CreateMutexW(nullptr, FALSE, name.c_str());
    isFirst = made == nullptr || GetLastError() != ERROR_ALREADY_EXISTS;
    return made;
}

// Runs on a thread of the system's own. The newest handler is asked first, and one that takes the
// event keeps it from the others; what nobody takes ends the process.
BOOL WINAPI Note(DWORD event) {
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) return FALSE;
    const bool isSecond = wanted.exchange(true);
    return isFirst && !isSecond ? TRUE : FALSE;
}

}  // namespace

Interrupt::Interrupt() {
    if (living++ > 0) return;
    mark = MakeMark();
    SetConsoleCtrlHandler(&Note, TRUE);
}

Interrupt::~Interrupt() {
    if (--living > 0) return;
    SetConsoleCtrlHandler(&Note, FALSE);
    if (mark != nullptr) CloseHandle(mark);
    mark = nullptr;
    wanted = false;
}

bool Interrupt::IsWanted() {
    return wanted;
}

void Interrupt::Meet() {
    wanted = false;
}

}  // namespace platform
