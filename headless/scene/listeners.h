#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

#include "headless/hold/undo_stream.h"

namespace headless {

// Who is told of something, each once and in the order in which they came. Whoever is told may come
// and go himself: who is gone is not told any more, who came meanwhile is told from the next time
// on. All are told, also when one of them throws; the first exception then comes out. A listener
// that is `Listener()` is none.
template <class Listener>
class Listeners {
  public:
    void Add(const Listener& listener) {
        if (!Contains(listener)) listeners_.push_back(listener);
    }

    // False: it was none of them.
    bool Remove(const Listener& listener) {
        if (listener == Listener() || !Contains(listener)) return false;
        std::ranges::replace(listeners_, listener, Listener());
        DropGone();
        return true;
    }

    void Forget() {
        std::ranges::fill(listeners_, Listener());
        DropGone();
    }

    template <class Act>
    void Tell(Act act) {
        FirstThrown thrown;
        ++telling_;
        const std::size_t present = listeners_.size();
        for (std::size_t i = 0; i < present; ++i) {
            const Listener listener = listeners_[i];
            if (listener != Listener()) thrown.Try([&] { act(listener); });
        }
        --telling_;
        DropGone();
        thrown.Rethrow();
    }

  private:
    bool Contains(const Listener& listener) const {
        return std::ranges::find(listeners_, listener) != listeners_.end();
    }
    void DropGone() {
        if (telling_ == 0) std::erase(listeners_, Listener());
    }

    std::vector<Listener> listeners_;  // none where one has gone while they are told
    int telling_ = 0;                  // rounds under way, each of which goes by index
};

// Tells everybody who has registered for a code with host/notify.h. Callbacks may register and
// unregister, and throw, as above.
void Broadcast(int code, void* callParam = nullptr);

void ForgetNotifications();

}  // namespace headless
