#pragma once

#include "platform/win32.h"

// The pages of the command panel, each a dialog of some module's resources.
namespace headless {

// Null if the module has no such dialog.
HWND AddPage(HINSTANCE instance, const char* dialogTemplate, DLGPROC procedure, const char* title,
             LPARAM parameter);
void DeletePage(HWND page);  // one that is gone, or never was, is passed over
void DeleteAllPages();

// Presses the first button of that id, oldest page first. False: there is none. The page can be
// gone when the press has been handled.
bool PressPageButton(int controlId);

}  // namespace headless
