#pragma once

#include "host/host_api.h"
#include "platform/win32.h"

// Registers the host's own kinds of control for a module's dialogs.
HOST_API void InitCustomControls(HINSTANCE module);
