#include "headless/ui/main_window.h"

namespace headless {
namespace {

HWND mainWindow = nullptr;
int acceleratorsOff = 0;
bool animateButton = true;

}  // namespace

// Real, with its pages, but beyond every screen and without a place among the running programs, for
// nobody is to look at it.
void OpenMainWindow() {
    if (mainWindow) return;
    constexpr int kBeyond = -32000;
    mainWindow = CreateWindowExA(WS_EX_TOOLWINDOW | WS_EX_NOACTIVATE, "STATIC", "Headless host",
                                 WS_POPUP | WS_VISIBLE, kBeyond, kBeyond, 1280, 1024, nullptr,
                                 nullptr, nullptr, nullptr);
}

void CloseMainWindow() {
    DestroyWindow(mainWindow);
    mainWindow = nullptr;
}

HWND MainWindow() {
    return mainWindow;
}

void EnableHostAccelerators() {
    if (acceleratorsOff > 0) --acceleratorsOff;
}

void DisableHostAccelerators() {
    ++acceleratorsOff;
}

bool HostAcceleratorsEnabled() {
    return acceleratorsOff == 0;
}

void EnableHostAnimateButton(bool enable) {
    animateButton = enable;
}

bool HostAnimateButtonEnabled() {
    return animateButton;
}

void ResetFrame() {
    acceleratorsOff = 0;
    animateButton = true;
}

}  // namespace headless
