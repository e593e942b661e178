#pragma once

#include "platform/win32.h"

class ScalarControl;
class TransformControl;

// Conversion puts one of the host's own controllers in the place of one of ours, with the same key
// times and values: wherever the scene referred to ours, it refers to the new one, and ours lives
// on only as long as the undo stream needs it. Selection of keys does not carry over. Each
// controller is one step of undo, or part of the hold that is open already. While the Core runs our
// controllers report no keys, and what carries over is the present value alone; convert when it has
// stopped.

// To the host's default position, rotation and scale controller. If the controller's page was ever
// open the motion panel is built anew, which closes that page.
void ConvertToPRSController(TransformControl* source);

// To the host's linear float controller. It gets a key at tick 0 with the first key's value if all
// keys are later.
void ConvertToScalarController(ScalarControl* source);

// All of them, transforms before scalars, from the newest to the oldest. Controllers that nothing
// in the scene refers to, such as those converted before, are left alone.
void ConvertAllControllers();

// The procedure of the page with the button that converts a TransformControl, which is the page's
// parameter.
INT_PTR CALLBACK ConvertPanelDlgProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
