#pragma once

#include "host/reference.h"

// Whether a record of the undo stream can still meet a host object: there are records, or a hold is
// open that may get some. The hold's room answers.
bool UndoStreamCanMeetObjects();

// The end of objects that nothing refers to any more. They are deleted at once if no record of the
// undo stream can meet them; otherwise they are parked here, whole and at their address, so that an
// undo or redo can bring them back, until the stream is empty. Objects end here while others are
// being destroyed, so nothing is allocated: the parked ones are a list that runs through them.
class Graveyard {
  public:
    static Graveyard& Get();

    // Somebody let go of `target`. Nothing happens while others still refer to it.
    void Release(ReferenceTarget& target);

    // Takes `target` out again, because somebody refers to it or it is being destroyed.
    void Revive(ReferenceTarget& target);

    // Deletes what is parked, the newest first, unless the undo stream can meet it. What these
    // objects let go of ends in the same sweep, however long the chain.
    void Sweep();

    // While one of these is alive nothing is deleted; the last of them sweeps.
    class Pause {
      public:
        Pause();
        ~Pause();
        Pause(const Pause&) = delete;
        Pause& operator=(const Pause&) = delete;
    };

  private:
    static bool IsReferredTo(const ReferenceTarget& target);

    ReferenceTarget* newest_ = nullptr;
    int pauses_ = 0;
};
