#include <algorithm>

#include "headless/references/dependents_walk.h"
#include "headless/references/graveyard.h"
#include "headless/references/reference_book.h"
#include "headless/references/reference_record.h"
#include "host/hold.h"
#include "host/reference.h"

namespace {

// How far a message travels upward. Real chains are a handful long; only a file that was made to do
// harm has more.
constexpr int kFarthestMessage = 256;

int messageDepth = 0;

class Deeper {
  public:
    Deeper() { ++messageDepth; }
    ~Deeper() { --messageDepth; }
    Deeper(const Deeper&) = delete;
    Deeper& operator=(const Deeper&) = delete;
};

}  // namespace

RemapDir::~RemapDir() = default;

ReferenceTarget::~ReferenceTarget() {
    ReferenceBook::Forget(*this);
}

RefTargetHandle ReferenceTarget::Clone(RemapDir&) {
    return nullptr;
}

bool ReferenceTarget::HasDependents() const {
    return std::any_of(dependents_.begin(), dependents_.end(), [](const auto& dependent) {
        if (dependent.first == nullptr) return false;
        const auto* target = dynamic_cast<const ReferenceTarget*>(dependent.first);
        return target == nullptr || !target->parked_;
    });
}

void ReferenceTarget::BaseClone(ReferenceTarget* from, ReferenceTarget* to, RemapDir& remap) {
    remap.AddEntry(from, to);
}

RefResult ReferenceTarget::NotifyDependents(Interval changed, PartID part, RefMessage message,
                                            SClass_ID classFilter, bool propagate,
                                            RefTargetHandle target) {
    if (messageDepth >= kFarthestMessage) return REF_SUCCEED;
    const Graveyard::Pause pause;
    const Deeper deeper;
    const DependentsWalk walk(*this);
    RefTargetHandle const sender = target != nullptr ? target : this;
    for (std::size_t i = dependents_.size(); i-- > 0;) {
        ReferenceMaker* const maker = dependents_[i].first;
        if (maker == nullptr) continue;
        if (classFilter != NOTIFY_ALL && maker->SuperClassID() != classFilter) continue;
        auto* const above = propagate ? dynamic_cast<ReferenceTarget*>(maker) : nullptr;
        PartID partSeen = part;
        const RefResult answer = maker->NotifyRefChanged(changed, sender, partSeen, message);
        if (answer == REF_STOP || walk.TargetIsGone()) return answer;
        if (above == nullptr || dependents_[i].first != maker) continue;
        above->NotifyDependents(changed, partSeen, message, classFilter);
        if (walk.TargetIsGone()) break;
    }
    return REF_SUCCEED;
}

// The oldest first, so that the order of the dependents stays.
void ReferenceTarget::TransferReferences(ReferenceTarget* from, bool deleteFrom) {
    if (from == nullptr || from == this) return;
    const Graveyard::Pause pause;
    const auto dependents = from->dependents_;
    for (const auto& [maker, index] : dependents) {
        if (maker == nullptr || ReferenceBook::RefersTo(*this, *maker)) continue;
        if (theHold.Holding()) theHold.Put(new ReferenceRecord(*maker, index, from, this));
        ReferenceBook::Move(*maker, index, this);
    }
    if (deleteFrom) Graveyard::Get().Release(*from);
}

void ReferenceTarget::LoseDependents() {
    const Graveyard::Pause pause;
    const DependentsWalk walk(*this);
    for (std::size_t i = 0, present = dependents_.size(); i < present; ++i) {
        const auto [maker, index] = dependents_[i];
        if (maker != nullptr) maker->ReplaceReference(index, nullptr);
        if (walk.TargetIsGone()) return;
    }
}
