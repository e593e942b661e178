#include "references/graveyard.h"

#include <algorithm>

// Never destroyed: objects of other modules may let go of each other while the process ends.
Graveyard& Graveyard::Get() {
    static Graveyard& graveyard = *new Graveyard;
    return graveyard;
}

// Places of those who left while a walk goes on count as empty.
bool Graveyard::IsReferredTo(const ReferenceTarget& target) {
    return std::any_of(target.dependents_.begin(), target.dependents_.end(),
                       [](const auto& dependent) { return dependent.first != nullptr; });
}

void Graveyard::Release(ReferenceTarget& target) {
    if (target.parked_ || IsReferredTo(target)) return;
    target.parked_ = true;
    parked_.push_back(&target);
    Sweep();
}

// An undo meets the objects in the reverse of the order in which they were parked, hence from the
// back.
void Graveyard::Revive(ReferenceTarget& target) {
    if (!target.parked_) return;
    target.parked_ = false;
    const auto found = std::find(parked_.rbegin(), parked_.rend(), &target);
    parked_.erase(std::prev(found.base()));
}

void Graveyard::Sweep() {
    if (pauses_ > 0 || parked_.empty()) return;
    ++pauses_;
    while (!parked_.empty() && !UndoStreamCanMeetObjects()) {
        ReferenceTarget* const target = parked_.back();
        Revive(*target);
        target->DeleteThis();
    }
    --pauses_;
}

Graveyard::Pause::Pause() {
    ++Get().pauses_;
}

Graveyard::Pause::~Pause() {
    --Get().pauses_;
    Get().Sweep();
}
