#include "undo/undo_groups.h"

#include <algorithm>
#include <utility>

#include "foundation/thrown.h"
#include "host/hold.h"
#include "tvl/error_code.h"
#include "tvl/log.h"
#include "undo/own_step.h"
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

// The first record of ours on the hold that the groups own; null: none yet, or they own none.
constinit const RestoreObj* holdMark = nullptr;

void DisownHold(UndoGroups& groups) {
    groups.ownsHold = false;
    holdMark = nullptr;
}

struct ReleaseChunk {
    void operator()(TVL::CUndo* chunk) const { EndChunk(chunk); }
};
using OwnedChunk = std::unique_ptr<TVL::CUndo, ReleaseChunk>;

// The nest is done with the hold before that ends: what a cancel calls may open groups of its own.
void EndHold(UndoGroups& groups, const std::string& name) {
    const bool ownedHold = GroupsOwnHold();
    DisownHold(groups);
    const bool cancelled = std::exchange(groups.cancelRequested, false);
    if (!ownedHold) return;
    if (cancelled) {
        theHold.Cancel();
    } else {
        theHold.Accept(name.c_str());
    }
}

// A nest for which the host's hold fails has not begun.
void BeginHold(UndoGroups& groups) {
    try {
        theHold.Begin();
    } catch (...) {
        DisownHold(groups);
        groups.undoGroups.clear();
        throw;
    }
}

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
    WarnOfUnusualNest(groups.undoGroups, name);
    groups.undoGroups.push_back(std::move(name));
    if (groups.undoGroups.size() > 1) return 0;
    ++groups.nest;
    groups.ownsHold = CanBeginHold();
    if (groups.ownsHold) BeginHold(groups);
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

    EndHold(groups, name);
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

bool GroupsOwnHold() {
    return OpenUndoGroups().ownsHold && theHold.Holding() && !theHold.RestoreOrRedoing();
}

namespace {

// A record that the host has no place for is no mark: its end says nothing of the hold.
template <class Wrapper>
void PutOnHold(OwnedChunk chunk) {
    auto record = std::make_unique<Wrapper>(chunk.get());
    static_cast<void>(chunk.release());
    const RestoreObj* const put = record.get();
    theHold.Put(record.release());
    if (!holdMark && GroupsOwnHold()) holdMark = put;
}

template <class Wrapper>
std::int32_t AddChunk(OwnedChunk chunk) {
    if (!IsHoldingUndo()) {
        chunk.reset();
        return TVL::Report(kNotHolding);
    }
    if (theHold.Holding()) PutOnHold<Wrapper>(std::move(chunk));
    return 0;
}

}  // namespace

std::int32_t AddCoreUndoChunk(TVL::CUndo* chunk) {
    return AddChunk<CoreUndoWrapper>(OwnedChunk(chunk));
}

std::int32_t AddUndoChunk(std::unique_ptr<TVL::CUndo> chunk) {
    return AddChunk<CUndoWrapper>(OwnedChunk(chunk.release()));
}

// A hold that cannot be watched is given up at once.
void MarkHold() {
    if (holdMark || !GroupsOwnHold()) return;
    if (!TVL::TraceIfThrown("Put", [] { PutOnHold<CUndoWrapper>(nullptr); }))
        DisownHold(OpenUndoGroups());
}

// The adaptor may be gone when the host drops its last records, so it is not asked for unless the
// record was put for groups that are open.
void NoteEndOfHold(const RestoreObj& record) {
    if (&record == holdMark) DisownHold(OpenUndoGroups());
}

OutsideHold::OutsideHold(const char* label) : nest(OpenUndoGroups().nest) {
    if (!IsHoldingUndo() || !theHold.Holding()) return;
    closed = true;
    owned = GroupsOwnHold();
    DisownHold(OpenUndoGroups());
    TVL::TraceIfThrown(label, [label] { theHold.Accept(label); });
}

OutsideHold::~OutsideHold() {
    UndoGroups& groups = OpenUndoGroups();
    if (!closed || groups.nest != nest || groups.undoGroups.empty() || !CanBeginHold()) return;
    const bool begun = TVL::TraceIfThrown("the hold of undo groups", [] { theHold.Begin(); });
    groups.ownsHold = owned && begun;
}

void EndHoldOfGroups() {
    UndoGroups& groups = OpenUndoGroups();
    if (groups.undoGroups.empty()) return;
    TVL::TraceIfThrown("the end of undo groups",
                       [&] { EndHold(groups, std::string(groups.undoGroups.front())); });
}

void CancelHoldBegunSince(std::uint32_t nests) {
    UndoGroups& groups = OpenUndoGroups();
    if (groups.undoGroups.empty() || groups.nest <= nests) return;
    groups.cancelRequested = true;
    EndHoldOfGroups();
}

int CloseLeftUndoGroups() {
    std::vector<std::string>& open = OpenUndoGroups().undoGroups;
    const int left = static_cast<int>(open.size());
    if (left == 0) return 0;
    open.resize(1);
    TVL::TraceIfThrown("the end of undo groups", &EndUndoGroup);
    return left;
}
