#pragma once

namespace TVL {

// One undoable step of the Core's (or of the adaptor's), carried in the host's undo stream. It is
// made with new, given away with AdaptorInterface::AddUndoChunk, and released by whoever holds it
// last: by the adaptor at once if it is refused, else when the host drops it from its undo stream.
// Chunks of the Core's are all released before `detach` is called.
// The order of the virtual operations is part of the contract.
class CUndo {
  public:
    // Takes the step back. `isUndo` is true for the host's undo, false when an open group is
    // cancelled; no Redo follows a cancel.
    virtual void Undo(bool isUndo) = 0;

    // Does the step again after an Undo(true).
    virtual void Redo() = 0;

    // Destroys the chunk in the library that made it.
    virtual void Release() { delete this; }

    virtual ~CUndo() = default;
};

}  // namespace TVL
