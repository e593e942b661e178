#include <algorithm>
#include <cstdint>
#include <string_view>
#include <utility>

#include "platform/common/text.h"
#include "platform/posix/guarded.h"
#include "platform/posix/window_table.h"
#include "platform/win32.h"

namespace platform {
namespace {

// Runs `body` on the window's record, or returns `failure` if the handle is no window's.
template <class Result, class Body>
Result WithWindow(HWND handle, Result failure, Body&& body) noexcept {
    return Guarded(failure, [&]() -> Result {
        Window* const window = Windows().Find(handle);
        return window == nullptr ? failure : body(*window);
    });
}

void LeaveParent(HWND handle, HWND parentHandle) {
    if (Window* const parent = Windows().Find(parentHandle)) std::erase(parent->children, handle);
}

void Destroy(HWND handle) {
    CallProcedure(handle, WM_DESTROY, 0, 0);
    // A child that is leaving already is ended by the call that began it; so each is let go first.
    while (!Windows().Find(handle)->children.empty()) {
        auto& children = Windows().Find(handle)->children;
        const HWND child = children.front();
        children.erase(children.begin());
        DestroyWindow(child);
    }
    LeaveParent(handle, Windows().Find(handle)->parent);
    Windows().Remove(handle);
}

constexpr char kButtonClass[] = "Button";

bool IsButton(const Window& window) {
    return EqualWithoutCase(window.windowClass, kButtonClass);
}

int CopyOut(std::string_view text, LPSTR buffer, int size) {
    return static_cast<int>(CopyText(text, buffer, static_cast<std::size_t>(size)));
}

HWND NextSibling(HWND handle, const Window& window) {
    const Window* const parent = Windows().Find(window.parent);
    if (parent == nullptr) return nullptr;
    const auto end = parent->children.end();
    const auto found = std::find(parent->children.begin(), end, handle);
    return found == end || found + 1 == end ? nullptr : *(found + 1);
}

LRESULT Click(HWND button) {
    const Window* const record = Windows().Find(button);
    if (record == nullptr || !IsButton(*record)) return 0;
    constexpr int clicked = 0;
    CallProcedure(record->parent, WM_COMMAND, MAKEWPARAM(record->id, clicked),
                  reinterpret_cast<LPARAM>(button));
    return 0;
}

}  // namespace
}  // namespace platform

using platform::Guarded;
using platform::Window;
using platform::Windows;
using platform::WithWindow;

extern "C" {

HWND CreateWindowExA(DWORD, LPCSTR className, LPCSTR windowName, DWORD style, int x, int y,
                     int width, int height, HWND parent, HMENU menuOrId, HINSTANCE instance,
                     LPVOID) {
    if (className == nullptr) return nullptr;
    return Guarded<HWND>(nullptr, [&] {
        const int id = static_cast<int>(reinterpret_cast<std::uintptr_t>(menuOrId) & 0x7FFFFFFF);
        const char* const text = windowName == nullptr ? "" : windowName;
        return platform::AddWindow(
            {{className, text, style, id, x, y, width, height}, instance, parent});
    });
}

BOOL DestroyWindow(HWND handle) {
    return WithWindow<BOOL>(handle, FALSE, [&](Window& window) {
        if (window.leaving) return FALSE;
        window.leaving = true;
        platform::Destroy(handle);
        return TRUE;
    });
}

BOOL IsWindow(HWND handle) {
    return Windows().Find(handle) == nullptr ? FALSE : TRUE;
}

BOOL IsWindowVisible(HWND handle) {
    const Window* window = Windows().Find(handle);
    if (window == nullptr) return FALSE;
    for (; window != nullptr; window = Windows().Find(window->parent)) {
        if (!window->visible) return FALSE;
    }
    return TRUE;
}

BOOL ShowWindow(HWND handle, int command) {
    return WithWindow<BOOL>(handle, FALSE, [&](Window& window) {
        return std::exchange(window.visible, command != SW_HIDE) ? TRUE : FALSE;
    });
}

HWND GetParent(HWND handle) {
    return WithWindow<HWND>(handle, nullptr, [](const Window& window) { return window.parent; });
}

HWND GetDlgItem(HWND dialog, int id) {
    return WithWindow<HWND>(dialog, nullptr, [&](const Window& window) {
        const auto found =
            std::find_if(window.children.begin(), window.children.end(), [&](HWND child) {
                const Window* const control = Windows().Find(child);
                return control != nullptr && control->id == id;
            });
        return found == window.children.end() ? nullptr : *found;
    });
}

BOOL SetWindowTextA(HWND handle, LPCSTR text) {
    return WithWindow<BOOL>(handle, FALSE, [&](Window& window) {
        window.text = text == nullptr ? "" : text;
        return TRUE;
    });
}

int GetWindowTextA(HWND handle, LPSTR buffer, int size) {
    if (buffer == nullptr || size <= 0) return 0;
    buffer[0] = '\0';
    return WithWindow<int>(handle, 0, [&](const Window& window) {
        return platform::CopyOut(window.text, buffer, size);
    });
}

int GetDlgCtrlID(HWND handle) {
    return WithWindow<int>(handle, 0, [](const Window& window) { return window.id; });
}

HWND GetWindow(HWND handle, UINT relation) {
    return WithWindow<HWND>(handle, nullptr, [&](const Window& window) -> HWND {
        if (relation == GW_HWNDNEXT) return platform::NextSibling(handle, window);
        if (relation != GW_CHILD || window.children.empty()) return nullptr;
        return window.children.front();
    });
}

int GetClassNameA(HWND handle, LPSTR buffer, int size) {
    if (buffer == nullptr || size <= 0) return 0;
    return WithWindow<int>(handle, 0, [&](const Window& window) {
        const bool isButton = platform::IsButton(window);
        return platform::CopyOut(isButton ? platform::kButtonClass : window.windowClass, buffer,
                                 size);
    });
}

LONG_PTR GetWindowLongPtrA(HWND handle, int index) {
    if (index != GWLP_USERDATA) return 0;
    return WithWindow<LONG_PTR>(handle, 0, [](const Window& window) { return window.userData; });
}

LONG_PTR SetWindowLongPtrA(HWND handle, int index, LONG_PTR value) {
    if (index != GWLP_USERDATA) return 0;
    return WithWindow<LONG_PTR>(
        handle, 0, [&](Window& window) { return std::exchange(window.userData, value); });
}

LRESULT SendMessageA(HWND handle, UINT message, WPARAM wParam, LPARAM lParam) {
    return Guarded<LRESULT>(0, [&]() -> LRESULT {
        if (message == BM_CLICK) return platform::Click(handle);
        const INT_PTR result = platform::CallProcedure(handle, message, wParam, lParam);
        return message == WM_INITDIALOG ? result : 0;
    });
}

// There is nothing to initialise: every kind of control is there from the start.
void InitCommonControls() {}

}  // extern "C"
