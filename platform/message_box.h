#pragma once

#include <functional>
#include <string>

#include "platform/platform_api.h"
#include "platform/win32.h"

namespace platform {

// A message box that was asked for. There is nobody to press its button, so that it is answered at
// once. On Windows it is a real one, of which the handler is told while it stands on the screen,
// and `style` tells an error from other boxes and nothing else.
struct MessageBoxRequest {
    HWND owner = nullptr;
    std::string text;
    std::string caption;
    UINT style = 0;
};

using MessageBoxHandler = std::function<void(const MessageBoxRequest&)>;

// Gives every further message box to `handler`, or to the standard error stream if that is empty
// (on Windows: to the person before the screen), and returns the handler that had them before. A
// handler must be taken out before its module goes.
PLATFORM_API MessageBoxHandler SetMessageBoxHandler(MessageBoxHandler handler);

}  // namespace platform
