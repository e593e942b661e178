#include "headless/references/reference_book.h"

#include <algorithm>

#include "headless/breaches/breach_book.h"
#include "headless/hold/graveyard.h"
#include "headless/references/reference_record.h"

namespace headless {
namespace {

// So that the next one to be appended cannot fail.
template <class T>
void MakeRoom(std::vector<T>& list) {
    if (list.size() == list.capacity()) list.reserve(2 * list.size() + 1);
}

}  // namespace

void ReferenceBook::Point(ReferenceMaker& maker, int index, ReferenceTarget* target) {
    ReferenceTarget* const old = Move(maker, index, target);
    if (old != nullptr) Graveyard::Get().Release(*old);
}

// Both ends change or neither does.
ReferenceTarget* ReferenceBook::Move(ReferenceMaker& maker, int index, ReferenceTarget* target) {
    if (target != nullptr) {
        MakeRoom(target->dependents_);
        MakeRoom(maker.references_);
    }
    ReferenceTarget* const old = Unlink(maker, index);
    maker.SetReference(index, target);
    if (target != nullptr) {
        Graveyard::Get().Revive(*target);
        target->dependents_.emplace_back(&maker, index);
        maker.references_.emplace_back(index, target);
    }
    return old;
}

bool ReferenceBook::Knows(const ReferenceMaker& maker, int index, const ReferenceTarget* target) {
    const auto& known = maker.references_;
    return std::any_of(known.begin(), known.end(), [&](const auto& reference) {
        return reference.first == index && reference.second == target;
    });
}

// Climbs from the maker to whatever refers to it, each object once. Upward the way is short: few
// things refer to a controller or an object.
bool ReferenceBook::RefersTo(ReferenceTarget& target, ReferenceMaker& maker) {
    static std::uint32_t search = 0;
    ++search;
    std::vector<ReferenceMaker*> reached{&maker};
    while (!reached.empty()) {
        ReferenceTarget* const here = reached.back()->asTarget_;
        reached.pop_back();
        if (here == &target) return true;
        if (here == nullptr || here->seenBySearch_ == search) continue;
        here->seenBySearch_ = search;
        for (const auto& [above, index] : here->dependents_)
            if (above != nullptr) reached.push_back(above);
    }
    return false;
}

void ReferenceBook::Forget(ReferenceMaker& maker) {
    ObjectWatch::TellGone(maker);
    const Graveyard::Pause pause;
    while (!maker.references_.empty()) {
        const auto [index, target] = maker.references_.back();
        Unlink(maker, index);
        Graveyard::Get().Release(*target);
    }
}

void ReferenceBook::Forget(ReferenceTarget& target) {
    Graveyard::Get().Revive(target);
    DependentsWalk::TellGone(target);
    const auto dependents = std::move(target.dependents_);
    for (const auto& [maker, index] : dependents) {
        if (maker == nullptr) continue;
        std::erase(maker->references_, std::pair(index, &target));
        maker->SetReference(index, nullptr);
        if (maker->GetReference(index) == &target)
            Book("it still points at what is freed", "SetReference");
    }
}

ReferenceTarget* ReferenceBook::Unlink(ReferenceMaker& maker, int index) {
    auto& known = maker.references_;
    const auto found = std::find_if(known.begin(), known.end(), [index](const auto& reference) {
        return reference.first == index;
    });
    if (found == known.end()) return nullptr;
    ReferenceTarget* const target = found->second;
    known.erase(found);
    RemoveDependent(*target, maker, index);
    return target;
}

// While somebody walks over the dependents, their places stay.
void ReferenceBook::RemoveDependent(ReferenceTarget& target, const ReferenceMaker& maker,
                                    int index) {
    auto& dependents = target.dependents_;
    const auto found =
        std::find_if(dependents.rbegin(), dependents.rend(), [&](const auto& dependent) {
            return dependent.first == &maker && dependent.second == index;
        });
    if (found == dependents.rend()) return;
    if (target.walk_ == nullptr) {
        dependents.erase(std::prev(found.base()));
        return;
    }
    found->first = nullptr;
    target.walk_->TellSomeoneLeft();
}

}  // namespace headless
