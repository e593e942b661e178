#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "tvl/undo.h"

// The Core's nested, named undo groups on the host's one hold. The first group to open begins the
// hold if nobody has; the last to close accepts it under the name of the outermost group, or
// cancels it if any group of the nest was cancelled. In a hold of somebody else's the groups only
// count.
struct UndoGroups {
    bool ownsHold = false;                // the hold was begun for the outermost open group
    bool cancelRequested = false;         // the nest ends with a cancel
    std::vector<std::string> undoGroups;  // names of the open groups, the innermost last
};

// The adaptor's groups.
UndoGroups& OpenUndoGroups();

// The statuses are 0, or the value of the code that says what is wrong.
std::int32_t BeginUndoGroup(std::string name);
std::int32_t EndUndoGroup();
std::int32_t CancelUndoGroup();

// A group is open and the host is not undoing or redoing.
bool IsHoldingUndo();

// Hand a chunk over, which ends at once if no group takes it. A chunk of the adaptor's own stays in
// the host's undo stream when the Core leaves; the Core's end with it.
std::int32_t AddUndoChunk(std::unique_ptr<TVL::CUndo> chunk);
std::int32_t AddCoreUndoChunk(TVL::CUndo* chunk);

// Ends a nest that a Core left open, keeping what was done in it; the number of its groups.
int CloseLeftUndoGroups();
