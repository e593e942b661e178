#include "ui/main_window.h"

namespace headless {
namespace {

HWND mainWindow = nullptr;
int acceleratorsOff = 0;
bool animateButton = true;

}  // namespace

void OpenMainWindow() {
    if (mainWindow) return;
    mainWindow = CreateWindowExA(0, "STATIC", "Headless host", WS_VISIBLE, 0, 0, 1280, 1024,
                                 nullptr, nullptr, nullptr, nullptr);
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
