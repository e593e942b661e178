#include "headless/breaches/breach_book.h"
#include "headless/scene/listeners.h"
#include "host/notify.h"

namespace headless {
namespace {

struct Registration {
    NOTIFYPROC proc = nullptr;
    void* param = nullptr;
    int code = 0;

    friend bool operator==(const Registration&, const Registration&) = default;
};

Listeners<Registration> registered;

}  // namespace

void Broadcast(int code, void* callParam) {
    const HostEvent event("notification", code);
    registered.Tell([&](const Registration& listener) {
        if (listener.code != code) return;
        NotifyInfo info{code, callParam};
        listener.proc(listener.param, &info);
    });
}

void ForgetNotifications() {
    registered.Forget();
}

}  // namespace headless

int RegisterNotification(NOTIFYPROC proc, void* param, int code) {
    headless::ExpectHost("RegisterNotification");
    if (!proc) return 0;
    headless::registered.Add({proc, param, code});
    return 1;
}

int UnRegisterNotification(NOTIFYPROC proc, void* param, int code) {
    headless::ExpectHost("UnRegisterNotification");
    return proc && headless::registered.Remove({proc, param, code}) ? 1 : 0;
}
