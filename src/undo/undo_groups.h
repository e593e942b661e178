#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/hold.h"
#include "tvl/undo.h"

// The Core's nested, named undo groups on the host's one hold. The first group to open begins the
// hold if nobody has; the last to close accepts it under the name of the outermost group, or
// cancels it if any group of the nest was cancelled. In a hold of somebody else's the groups only
// count; so they do where no hold can be had, and from the moment at which the host or another
// plug-in has ended theirs.
struct UndoGroups {
    bool ownsHold = false;                // the hold that is open was begun for the outermost group
    bool cancelRequested = false;         // the nest ends with a cancel
    std::vector<std::string> undoGroups;  // names of the open groups, the innermost last
    std::uint32_t nest = 0;               // how many outermost groups there have been
};

// The adaptor's groups.
UndoGroups& OpenUndoGroups();

// The statuses are 0, or the value of the code that says what is wrong.
std::int32_t BeginUndoGroup(std::string name);
std::int32_t EndUndoGroup();
std::int32_t CancelUndoGroup();

// A group is open and the host is not undoing or redoing. A hold need not be open.
bool IsHoldingUndo();

// The hold that is open was begun for the groups, and is theirs to end.
bool GroupsOwnHold();

// Hand a chunk over, which ends at once if no group takes it, or if there is no hold to put it on.
// A chunk of the adaptor's own stays in the host's undo stream when the Core leaves; the Core's end
// with it.
std::int32_t AddUndoChunk(std::unique_ptr<TVL::CUndo> chunk);
std::int32_t AddCoreUndoChunk(TVL::CUndo* chunk);

// The host may end any hold; the groups learn it from the first of their records on theirs, when it
// is told of the end or destroyed. Before the host does what ends a hold without being asked, such
// as a new scene, MarkHold puts a record that does nothing on a hold that has none of the groups'.
void MarkHold();
void NoteEndOfHold(const RestoreObj& record);

// While it is alive the groups have no hold: it closes the one that is open under a label, and
// opens another in its place if the same nest is still open then and nobody has begun a hold.
class OutsideHold {
  public:
    explicit OutsideHold(const char* label);
    ~OutsideHold();
    OutsideHold(const OutsideHold&) = delete;
    OutsideHold& operator=(const OutsideHold&) = delete;

  private:
    bool closed = false;
    bool owned = false;  // the hold was the groups'
    std::uint32_t nest;
};

// End the hold that the open groups began, if it is still theirs: as the last EndUndoGroup would,
// or by a cancel if the nest is younger than the first `nests`. The names stay for their own
// endings, which end nothing else. What a record of somebody else's throws then is traced, here and
// in the next one: whoever takes a Core down goes on.
void EndHoldOfGroups();
void CancelHoldBegunSince(std::uint32_t nests);

// Ends a nest that a Core left open, keeping what was done in it; the number of its groups.
int CloseLeftUndoGroups();
