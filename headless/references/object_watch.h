#pragma once

#include "host/reference.h"

// A pointer to a host object that tells whether the object has been destroyed meanwhile. Those to
// one object are a list that begins in it, so that its end finds them, and nothing is allocated.
class ObjectWatch {
  public:
    explicit ObjectWatch(ReferenceMaker* object) : object_(object) {
        if (object_ == nullptr) return;
        next_ = object_->watches_;
        place_ = &object_->watches_;
        if (next_ != nullptr) next_->place_ = &next_;
        *place_ = this;
    }
    ~ObjectWatch() { Leave(); }
    ObjectWatch(const ObjectWatch&) = delete;
    ObjectWatch& operator=(const ObjectWatch&) = delete;

    ReferenceMaker* Get() const { return object_; }  // null: nothing was watched, or it is gone
    bool IsGone() const { return isGone_; }

    static void TellGone(ReferenceMaker& object) {
        while (ObjectWatch* const watch = object.watches_) {
            watch->Leave();
            watch->isGone_ = true;
        }
    }

  private:
    void Leave() {
        if (object_ == nullptr) return;
        *place_ = next_;
        if (next_ != nullptr) next_->place_ = place_;
        object_ = nullptr;
    }

    ReferenceMaker* object_;
    ObjectWatch* next_ = nullptr;
    ObjectWatch** place_ = nullptr;  // the pointer that points here
    bool isGone_ = false;
};
