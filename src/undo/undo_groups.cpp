#include "undo/undo_groups.h"

#include <algorithm>
#include <utility>

#include "host/hold.h"
#include "tvl/error_code.h"
#include "tvl/log.h"
#include "undo/undo_wrapper.h"

namespace {

constexpr TVL::Failure kStartEndMismatch{
    "UNDO_STARTENDMISMATCH", "Mismatch on undo start and end group", TVL::ErrorCode::kError};
constexpr TVL::Failure kNotHolding{"UNDO_NOTHOLDING",
                                   "Currently not holding an undo group. Unable to add undo chunk.",
                                   TVL::ErrorCode::kWarning};

// What a sound Core stays below.
constexpr std::size_t kUsualDepth = 100;
constexpr std::ptrdiff_t kUsualNamesakes = 3;

void WarnOfUnusualNest(const std::vector<std::string>& open, const std::string& name) {
    if (!TVL::Log::GetInstance()->IsLevelActive(TVL::Log::kNotice)) return;
    TVL::Log log(TVL::Log::kWarning);
    if (open.size() > kUsualDepth) {
        log.Write("DEBUG WARNING: Detected unusual high undo level.", TVL::Log::kCritical);
    }
    if (std::count(open.begin(), open.end(), name) > kUsualNamesakes) {
        log.Write("DEBUG WARNING: Detected duplicated undo groups. Possible undo group mismatch");
    }
}

}  // namespace

std::int32_t BeginUndoGroup(std::string name) {
    UndoGroups& groups = OpenUndoGroups();
    if (groups.undoGroups.empty()) {
        groups.ownsHold = !theHold.Holding();
        if (groups.ownsHold) theHold.Begin();
    }
    WarnOfUnusualNest(groups.undoGroups, name);
    groups.undoGroups.push_back(std::move(name));
    return 0;
}

std::int32_t EndUndoGroup() {
    UndoGroups& groups = OpenUndoGroups();
    if (groups.undoGroups.empty()) {
        TVL::Log(TVL::Log::kError)
            .Write("Error: undo group mismatch. Attempt to end a non-existing undo group detected");
        return TVL::Report(kStartEndMismatch);
    }
    const std::string name = std::move(groups.undoGroups.back());
    groups.undoGroups.pop_back();
    if (!groups.undoGroups.empty()) return 0;

    // The nest is over before the hold ends: what a cancel calls may open groups of its own.
    const bool ownedHold = std::exchange(groups.ownsHold, false);
    const bool cancelled = std::exchange(groups.cancelRequested, false);
    if (!ownedHold) return 0;
    if (cancelled) {
        theHold.Cancel();
    } else {
        theHold.Accept(name.c_str());
    }
    return 0;
}

std::int32_t CancelUndoGroup() {
    UndoGroups& groups = OpenUndoGroups();
    groups.cancelRequested = !groups.undoGroups.empty();
    return EndUndoGroup();
}

bool IsHoldingUndo() {
    return !OpenUndoGroups().undoGroups.empty() && !theHold.RestoreOrRedoing();
}

std::int32_t AddCoreUndoChunk(TVL::CUndo* chunk) {
    if (IsHoldingUndo()) {
        theHold.Put(new CoreUndoWrapper(chunk));
        return 0;
    }
    if (chunk) chunk->Release();
    return TVL::Report(kNotHolding);
}

std::int32_t AddUndoChunk(std::unique_ptr<TVL::CUndo> chunk) {
    if (!IsHoldingUndo()) return TVL::Report(kNotHolding);
    theHold.Put(new CUndoWrapper(chunk.release()));
    return 0;
}

int CloseLeftUndoGroups() {
    std::vector<std::string>& open = OpenUndoGroups().undoGroups;
    const int left = static_cast<int>(open.size());
    if (left == 0) return 0;
    open.resize(1);
    EndUndoGroup();
    return left;
}
