#include "host/graphics_window.h"

GraphicsWindow::~GraphicsWindow() = default;
ViewExp::~ViewExp() = default;
