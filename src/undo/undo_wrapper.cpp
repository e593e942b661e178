#include "undo/undo_wrapper.h"

#include <utility>

#include "core_link/core_call.h"
#include "undo/undo_groups.h"

namespace {
constinit CoreUndoWrapper* newestWithChunk = nullptr;
}

void EndChunk(TVL::CUndo* chunk) {
    if (chunk) CallCore("Release of an undo chunk", [&] { chunk->Release(); });
}

CUndoWrapper::~CUndoWrapper() {
    NoteEndOfHold(*this);
    EndChunk(chunk);
}

void CUndoWrapper::Restore(int isUndo) {
    if (chunk) CallCore("Undo of an undo chunk", [&] { chunk->Undo(isUndo != 0); });
}

void CUndoWrapper::Redo() {
    if (chunk) CallCore("Redo of an undo chunk", [&] { chunk->Redo(); });
}

void CUndoWrapper::EndHold() {
    NoteEndOfHold(*this);
}

CoreUndoWrapper::CoreUndoWrapper(TVL::CUndo* carried) : CUndoWrapper(carried) {
    if (!chunk) return;
    older = newestWithChunk;
    if (older) older->newer = this;
    newestWithChunk = this;
}

CoreUndoWrapper::~CoreUndoWrapper() {
    if (chunk) LeaveList();
}

void CoreUndoWrapper::LeaveList() {
    (newer ? newer->older : newestWithChunk) = older;
    if (older) older->newer = newer;
}

// The end of a chunk may do anything, also make the host drop other records.
int ReleaseCoreChunks() {
    int released = 0;
    while (CoreUndoWrapper* const wrapper = newestWithChunk) {
        wrapper->LeaveList();
        EndChunk(std::exchange(wrapper->chunk, nullptr));
        ++released;
    }
    return released;
}
