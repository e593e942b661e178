#pragma once

#include "host/heap.h"
#include "host/host_api.h"
#include "host/types.h"

// A record of one change, put on the hold before the change is made.
class HOST_API RestoreObj : public MaxHeapOperators {
  public:
    virtual ~RestoreObj();

    // Takes the change back; `isUndo` is non-zero for an undo, after which a Redo can come, and
    // zero where an open hold is cancelled.
    virtual void Restore(int isUndo) = 0;
    virtual void Redo() = 0;

    virtual int Size();
    virtual void EndHold();
    virtual HostString Description();
};

// The host's undo: one hold at a time, from Begin to Accept or Cancel, becomes one step of the undo
// stream.
class HOST_API Hold {
  public:
    Hold() = default;
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;

    void Begin();
    void Accept(const char* label);
    void Cancel();  // restores the records, last put first, and destroys them

    // The record belongs to the hold from here on. While nothing is held it is destroyed at once.
    void Put(RestoreObj* record);

    bool Holding() const;
    bool RestoreOrRedoing() const;
};

extern HOST_API Hold theHold;
