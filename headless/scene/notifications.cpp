#include "headless/scene/notifications.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "headless/breaches/breach_book.h"
#include "headless/hold/first_thrown.h"
#include "host/notify.h"

namespace headless {
namespace {

struct Listener {
    NOTIFYPROC proc = nullptr;  // null once it has unregistered
    void* param = nullptr;
    int code = 0;

    friend bool operator==(const Listener&, const Listener&) = default;
};

std::vector<Listener> listeners;
int broadcasting = 0;  // broadcasts under way, each of which walks the list by index

void DropGone() {
    if (broadcasting == 0) {
        std::erase_if(listeners, [](const Listener& listener) { return !listener.proc; });
    }
}

}  // namespace

void Broadcast(int code, void* callParam) {
    const HostEvent event("notification", code);
    FirstThrown thrown;
    ++broadcasting;
    const std::size_t present = listeners.size();
    for (std::size_t i = 0; i < present; ++i) {
        const Listener listener = listeners[i];
        if (!listener.proc || listener.code != code) continue;
        NotifyInfo info{code, callParam};
        thrown.Try([&] { listener.proc(listener.param, &info); });
    }
    --broadcasting;
    DropGone();
    thrown.Rethrow();
}

void ForgetNotifications() {
    for (Listener& listener : listeners)
        listener.proc = nullptr;
    DropGone();
}

}  // namespace headless

int RegisterNotification(NOTIFYPROC proc, void* param, int code) {
    using namespace headless;
    ExpectHost("RegisterNotification");
    if (!proc) return 0;
    const Listener listener{proc, param, code};
    if (std::find(listeners.begin(), listeners.end(), listener) == listeners.end())
        listeners.push_back(listener);
    return 1;
}

int UnRegisterNotification(NOTIFYPROC proc, void* param, int code) {
    using namespace headless;
    ExpectHost("UnRegisterNotification");
    const auto found = std::find(listeners.begin(), listeners.end(), Listener{proc, param, code});
    if (!proc || found == listeners.end()) return 0;
    found->proc = nullptr;
    DropGone();
    return 1;
}
