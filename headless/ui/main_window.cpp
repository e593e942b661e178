#include "headless/ui/main_window.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace headless {
namespace {

HWND mainWindow = nullptr;
int acceleratorsOff = 0;
bool animateButton = true;

std::vector<HWND> pages;

constexpr char kButtonClass[] = "Button";

bool IsButton(HWND control) {
    std::array<char, sizeof kButtonClass + 1> name{};
    GetClassNameA(control, name.data(), static_cast<int>(name.size()));
    return name.data() == std::string_view(kButtonClass);
}

std::vector<HWND> ButtonsOn(HWND page) {
    std::vector<HWND> buttons;
    for (HWND control = GetWindow(page, GW_CHILD); control;
         control = GetWindow(control, GW_HWNDNEXT))
        if (IsButton(control)) buttons.push_back(control);
    return buttons;
}

std::string TextOf(HWND window) {
    std::string text(256, '\0');
    while (true) {
        const int length = GetWindowTextA(window, text.data(), static_cast<int>(text.size()));
        const auto copied = static_cast<std::size_t>(length);
        if (copied + 1 < text.size()) return text.substr(0, copied);
        text.resize(2 * text.size());
    }
}

template <class IsMeant>
bool PressFirst(const IsMeant& isMeant) {
    for (const HWND page : pages) {
        for (const HWND button : ButtonsOn(page)) {
            if (!isMeant(button)) continue;
            SendMessageA(button, BM_CLICK, 0, 0);
            return true;
        }
    }
    return false;
}

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

std::vector<PageView> ViewPages() {
    std::vector<PageView> views;
    for (const HWND page : pages) {
        PageView view{TextOf(page), {}};
        for (const HWND button : ButtonsOn(page))
            view.buttons.push_back({GetDlgCtrlID(button), TextOf(button)});
        views.push_back(std::move(view));
    }
    return views;
}

bool PressPageButton(int controlId) {
    return PressFirst([&](HWND button) { return GetDlgCtrlID(button) == controlId; });
}

bool PressPageButton(std::string_view text) {
    return PressFirst([&](HWND button) { return TextOf(button) == text; });
}

bool PlacePageButton(int controlId, const char* text) {
    if (pages.empty()) return false;
    const auto id = static_cast<std::uintptr_t>(static_cast<unsigned>(controlId));
    return CreateWindowExA(0, kButtonClass, text, WS_CHILD | WS_VISIBLE, 0, 0, 160, 24,
                           pages.back(), reinterpret_cast<HMENU>(id), nullptr, nullptr) != nullptr;
}

}  // namespace headless
