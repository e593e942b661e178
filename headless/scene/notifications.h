#pragma once

// Telling everybody who has registered for a code with host/notify.h.
namespace headless {

// In the order of registration. A callback may register and unregister: who is gone is not told any
// more, who came during the broadcast is told from the next one on. All are told, also when one of
// them throws; the first exception then comes out of the broadcast.
void Broadcast(int code, void* callParam = nullptr);

void ForgetNotifications();

}  // namespace headless
