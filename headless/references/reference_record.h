#pragma once

#include "headless/references/reference_book.h"
#include "host/hold.h"

namespace headless {

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

// The record of one reference that was pointed elsewhere. It does nothing any more once one of the
// objects that it names has been destroyed by its creator.
class ReferenceRecord final : public RestoreObj {
  public:
    ReferenceRecord(ReferenceMaker& maker, int index, ReferenceTarget* before,
                    ReferenceTarget* after)
        : maker_(&maker), before_(before), after_(after), index_(index) {}

    void Restore(int) override { PointAt(before_); }
    void Redo() override { PointAt(after_); }

  private:
    void PointAt(const ObjectWatch& target) {
        if (maker_.IsGone() || before_.IsGone() || after_.IsGone()) return;
        ReferenceBook::Point(*maker_.Get(), index_, static_cast<ReferenceTarget*>(target.Get()));
    }

    ObjectWatch maker_;
    ObjectWatch before_;
    ObjectWatch after_;
    int index_;
};

}  // namespace headless
