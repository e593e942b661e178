#pragma once

#include <string_view>
#include <vector>

#include "headless/session.h"
#include "platform/win32.h"

namespace headless {

// The host's main window, in which its panels live, and the switches of its frame.

void OpenMainWindow();
void CloseMainWindow();
HWND MainWindow();

// Keyboard accelerators, which a module turns off while it takes text; the calls nest.
void EnableHostAccelerators();
void DisableHostAccelerators();
bool HostAcceleratorsEnabled();

// The button that a person presses for the animate mode.
void EnableHostAnimateButton(bool enable);
bool HostAnimateButtonEnabled();

void ResetFrame();

// The pages of the command panel, each a dialog of some module's resources.

// Null if the module has no such dialog.
HWND AddPage(HINSTANCE instance, const char* dialogTemplate, DLGPROC procedure, const char* title,
             LPARAM parameter);
void DeletePage(HWND page);  // one that is gone, or never was, is passed over
void DeleteAllPages();

// Oldest page first.
std::vector<PageView> ViewPages();

// Presses the first button of that id or text, oldest page first. False: there is none. The page
// can be gone when the press has been handled.
bool PressPageButton(int controlId);
bool PressPageButton(std::string_view text);

// On the newest page, behind what it has. False: there is no page, or the button could not be made.
bool PlacePageButton(int controlId, const char* text);

}  // namespace headless
