#pragma once

#include "platform/win32.h"

class IObjParam;
class TransformControl;

// The page of a TransformControl in the motion panel: one button, which converts the controller.
// The window's user data is the controller until it has been converted.

HWND AddConvertPage(IObjParam& ip, TransformControl& controller);

// Makes a page that is still open forget `controller`, which is about to go.
void ForgetController(HWND page, const TransformControl& controller);

INT_PTR CALLBACK ConvertPanelDlgProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
