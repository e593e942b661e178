#pragma once

#include <functional>
#include <utility>

#include "host/notify.h"

// Does something whenever the host tells of one thing, until it ends.
class OnNotification {
  public:
    OnNotification(int code, std::function<void(NotifyInfo&)> act)
        : code_(code), act_(std::move(act)) {
        RegisterNotification(&Hear, this, code_);
    }
    ~OnNotification() { UnRegisterNotification(&Hear, this, code_); }
    OnNotification& operator=(OnNotification&&) = delete;

  private:
    static void Hear(void* self, NotifyInfo* info) {
        static_cast<OnNotification*>(self)->act_(*info);
    }

    int code_;
    std::function<void(NotifyInfo&)> act_;
};
