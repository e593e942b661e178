#pragma once

#include <memory>

#include "host/reference.h"

namespace headless {

// The end of objects that nothing refers to any more. They are deleted at once if no record of the
// undo stream can meet them; otherwise they are parked here, whole and at their address, so that an
// undo or redo can bring them back, until the stream is empty. Objects end here while others are
// being destroyed, so nothing is allocated: the parked ones are a list that runs through them.
class Graveyard {
  public:
    static Graveyard& Get() { return graveyard_; }

    // Somebody let go of `target`. Nothing happens while others still refer to it.
    void Release(ReferenceTarget& target);

    // Takes `target` out again, because somebody refers to it or it is being destroyed.
    void Revive(ReferenceTarget& target);

    // Deletes what is parked, the newest first, unless the undo stream can meet it. What these
    // objects let go of ends in the same sweep, however long the chain.
    void Sweep() {
        if (pauses_ == 0 && newest_ != nullptr) DeleteParked();
    }

    // While one of these is alive nothing is deleted; the last of them sweeps.
    class Pause {
      public:
        Pause() { ++graveyard_.pauses_; }
        ~Pause() {
            --graveyard_.pauses_;
            graveyard_.Sweep();
        }
        Pause(const Pause&) = delete;
        Pause& operator=(const Pause&) = delete;
    };

  private:
    static bool IsReferredTo(const ReferenceTarget& target);
    void DeleteParked();

    static Graveyard graveyard_;

    ReferenceTarget* newest_ = nullptr;
    int pauses_ = 0;
};

// An object on its way to whoever is to refer to it. If nobody does in the end, because something
// failed, it goes like any other that nothing refers to.
struct Bury {
    void operator()(ReferenceTarget* target) const { Graveyard::Get().Release(*target); }
};
template <class T>
using Fresh = std::unique_ptr<T, Bury>;

}  // namespace headless
