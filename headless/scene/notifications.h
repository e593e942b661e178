#pragma once

// Telling everybody who has registered for a code with host/notify.h.
namespace headless {

// Callbacks may register and unregister, and throw, as headless/scene/listeners.h says.
void Broadcast(int code, void* callParam = nullptr);

void ForgetNotifications();

}  // namespace headless
