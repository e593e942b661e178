#pragma once

#include "foundation/live_instances.h"
#include "host/hold.h"
#include "tvl/undo.h"

// Releases a chunk; null is ignored.
void EndChunk(TVL::CUndo* chunk);

// Carries an undo chunk in the host's undo stream, and ends it when the host drops the record. The
// undo groups learn from it that the hold it was put on is over.
class CUndoWrapper : public RestoreObj {
  public:
    // The chunk, which may be null, is the wrapper's from here on.
    explicit CUndoWrapper(TVL::CUndo* carried) : chunk(carried) {}
    ~CUndoWrapper() override;
    CUndoWrapper(const CUndoWrapper&) = delete;
    CUndoWrapper& operator=(const CUndoWrapper&) = delete;

    void Restore(int isUndo) override;
    void Redo() override;
    void EndHold() override;

  protected:
    TVL::CUndo* chunk;
};

// Carries a chunk of the Core's, which must be gone before the Core's library is.
class CoreUndoWrapper final : public CUndoWrapper {
  public:
    explicit CoreUndoWrapper(TVL::CUndo* carried);
    ~CoreUndoWrapper() override;

  private:
    friend class LiveInstances<CoreUndoWrapper>;
    friend int ReleaseCoreChunks();

    static LiveInstances<CoreUndoWrapper> withChunk;  // those that still have theirs
    LiveLink<CoreUndoWrapper> liveLink;
};

// Ends every chunk of the Core's, the newest first; the records stay in the undo stream and do
// nothing from here on. The number of the chunks.
int ReleaseCoreChunks();

// The chunk of a recording: puts the host's time back to a remembered one; undo and redo flip
// between the two.
class CSetTimeRestoreObj final : public TVL::CUndo {
  public:
    explicit CSetTimeRestoreObj(double seconds) : time(seconds) {}

    void Undo(bool isUndo) override;
    void Redo() override { Undo(true); }

  private:
    double time;  // seconds
};
