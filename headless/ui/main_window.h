#pragma once

#include "platform/win32.h"

// The host's main window, in which its panels live, and the switches of its frame.
namespace headless {

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

}  // namespace headless
