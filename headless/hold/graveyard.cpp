#include "headless/hold/graveyard.h"

#include <algorithm>
#include <type_traits>
#include <utility>

#include "headless/hold/undo_stream.h"

namespace headless {

// Nothing to destroy: objects of other modules may let go of each other while the process ends.
static_assert(std::is_trivially_destructible_v<Graveyard>);
constinit Graveyard Graveyard::graveyard_;

// Places of those who left while a walk goes on count as empty.
bool Graveyard::IsReferredTo(const ReferenceTarget& target) {
    return std::any_of(target.dependents_.begin(), target.dependents_.end(),
                       [](const auto& dependent) { return dependent.first != nullptr; });
}

void Graveyard::Release(ReferenceTarget& target) {
    if (target.parked_ || IsReferredTo(target)) return;
    target.parked_ = true;
    target.olderParked_ = newest_;
    if (newest_ != nullptr) newest_->newerParked_ = &target;
    newest_ = &target;
    Sweep();
}

void Graveyard::Revive(ReferenceTarget& target) {
    if (!target.parked_) return;
    target.parked_ = false;
    ReferenceTarget* const older = std::exchange(target.olderParked_, nullptr);
    ReferenceTarget* const newer = std::exchange(target.newerParked_, nullptr);
    if (older != nullptr) older->newerParked_ = newer;
    (newer != nullptr ? newer->olderParked_ : newest_) = older;
}

void Graveyard::DeleteParked() {
    ++pauses_;
    while (newest_ != nullptr && !UndoStream::Get().IsOccupied()) {
        ReferenceTarget* const target = newest_;
        Revive(*target);
        target->DeleteThis();
    }
    --pauses_;
}

}  // namespace headless
