#pragma once

#include <vector>

#include "platform/common/resources.h"
#include "platform/posix/handle_table.h"
#include "platform/win32.h"

namespace platform {

// A window or a control.
struct Window : WindowTemplate {
    HINSTANCE instance = nullptr;
    HWND parent = nullptr;
    DLGPROC procedure = nullptr;
    std::vector<HWND> children = {};
    LONG_PTR userData = 0;
    bool visible = false;
    bool leaving = false;  // from WM_DESTROY on
};

// Any message can end any window: after one was sent, a handle must be looked up anew.
HandleTable<HWND, Window>& Windows();

// The new window joins its parent's children. Null if the parent is gone, or if a child has none.
HWND AddWindow(Window window);

// What the window's procedure returned; 0 if there is no window or procedure, or if it threw.
INT_PTR CallProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

// Leaves the module's windows without a procedure, since its code is about to go.
void ForgetProcedures(HMODULE module);

}  // namespace platform
