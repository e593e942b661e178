#include "undo/undo_wrapper.h"

#include <utility>

#include "core_link/core_link.h"
#include "core_link/trace_file.h"
#include "measures/host_clock.h"
#include "undo/undo_groups.h"

constinit LiveInstances<CoreUndoWrapper> CoreUndoWrapper::withChunk;

void EndChunk(TVL::CUndo* chunk) {
    if (chunk) CallCore("Release of an undo chunk", [&] { chunk->Release(); });
}

CUndoWrapper::~CUndoWrapper() {
    NoteEndOfHold(*this);
    EndChunk(chunk);
}

void CUndoWrapper::Restore(int isUndo) {
    const TraceAfter trace;
    if (chunk) CallCore("Undo of an undo chunk", [&] { chunk->Undo(isUndo != 0); });
}

void CUndoWrapper::Redo() {
    const TraceAfter trace;
    if (chunk) CallCore("Redo of an undo chunk", [&] { chunk->Redo(); });
}

void CUndoWrapper::EndHold() {
    NoteEndOfHold(*this);
}

// The chunk is the wrapper's when nothing can fail any more.
CoreUndoWrapper::CoreUndoWrapper(TVL::CUndo* carried) : CUndoWrapper(nullptr) {
    if (carried) withChunk.Append(*this);
    chunk = carried;
}

CoreUndoWrapper::~CoreUndoWrapper() {
    if (chunk) withChunk.Remove(*this);
}

// The end of a chunk may do anything, also make the host drop other records.
int ReleaseCoreChunks() {
    int released = 0;
    while (CoreUndoWrapper* const wrapper = CoreUndoWrapper::withChunk.Newest()) {
        CoreUndoWrapper::withChunk.Remove(*wrapper);
        EndChunk(std::exchange(wrapper->chunk, nullptr));
        ++released;
    }
    return released;
}

void CSetTimeRestoreObj::Undo(bool isUndo) {
    const double here = CurrentSeconds();
    SetCurrentSeconds(time);
    if (isUndo) time = here;
}
