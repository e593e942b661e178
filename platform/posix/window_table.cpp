#include "platform/posix/window_table.h"

#include <utility>

#include "platform/posix/guarded.h"
#include "platform/testing.h"

namespace platform {

// Never destroyed: windows can be asked for while the program ends.
HandleTable<HWND, Window>& Windows() {
    static auto* const windows = new HandleTable<HWND, Window>;
    return *windows;
}

HWND AddWindow(Window window) {
    const HWND parentHandle = window.parent;
    Window* const parent = Windows().Find(parentHandle);
    const bool needsParent = (window.style & WS_CHILD) != 0 || parentHandle != nullptr;
    if (needsParent && parent == nullptr) return nullptr;
    window.visible = (window.style & WS_VISIBLE) != 0;
    const HWND handle = Windows().Add(std::move(window));
    if (parent != nullptr) parent->children.push_back(handle);
    return handle;
}

INT_PTR CallProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    const Window* const record = Windows().Find(window);
    if (record == nullptr || record->procedure == nullptr) return 0;
    const DLGPROC procedure = record->procedure;
    return Guarded<INT_PTR>(0, [&] { return procedure(window, message, wParam, lParam); });
}

void ForgetProcedures(HMODULE module) {
    Windows().ForEach([&](Window& window) {
        if (window.instance == module) window.procedure = nullptr;
    });
}

std::size_t CountWindows() {
    return Windows().Count();
}

}  // namespace platform
