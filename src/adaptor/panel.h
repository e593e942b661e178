#pragma once

#include "platform/win32.h"

// The page of the utility: a button that opens the Core, and, in a template that has one, a control
// that attaches and detaches it and says by its text which of the two it does next.
INT_PTR CALLBACK PanelDlgProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

inline constexpr const char* kAttachText = "Attach";
inline constexpr const char* kDetachText = "Detach";

// No effect if the window or the control is not there.
void ShowAttachState(HWND panel, const char* text);
