#include "headless/ui/rollup_pages.h"

#include <algorithm>
#include <vector>

#include "headless/ui/main_window.h"

namespace headless {
namespace {

std::vector<HWND> pages;

}  // namespace

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
