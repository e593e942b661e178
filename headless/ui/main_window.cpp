#include "headless/ui/main_window.h"

#include <algorithm>
#include <vector>

namespace headless {
namespace {

HWND mainWindow = nullptr;
int acceleratorsOff = 0;
bool animateButton = true;

std::vector<HWND> pages;

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

HWND AddPage(HINSTANCE instance, const char* dialogTemplate, DLGPROC procedure, const char* title,
             LPARAM parameter) {
    const HWND page =
        CreateDialogParamA(instance, dialogTemplate, MainWindow(), procedure, parameter);
    if (!page) return nullptr;
    SetWindowTextA(page, title);
    pages.push_back(page);
    return page;
}

void DeletePage(HWND page) {
    const auto found = std::find(pages.begin(), pages.end(), page);
    if (found == pages.end()) return;
    pages.erase(found);
    DestroyWindow(page);
}

void DeleteAllPages() {
    while (!pages.empty())
        DeletePage(pages.back());
}

bool PressPageButton(int controlId) {
    for (const HWND page : pages) {
        if (const HWND button = GetDlgItem(page, controlId)) {
            SendMessageA(button, BM_CLICK, 0, 0);
            return true;
        }
    }
    return false;
}

}  // namespace headless
