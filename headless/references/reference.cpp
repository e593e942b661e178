#include "host/reference.h"

#include <algorithm>

#include "headless/hold/graveyard.h"
#include "headless/references/reference_book.h"
#include "headless/references/reference_record.h"
#include "host/hold.h"

using headless::DependentsWalk;
using headless::Graveyard;
using headless::ReferenceBook;
using headless::ReferenceRecord;

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

// Empty: the class has given itself no name.
void Animatable::GetClassName(HostString& name) {
    name.clear();
}

void Animatable::FreeCaches() {}
void Animatable::BeginEditParams(IObjParam*, std::uint32_t, Animatable*) {}
void Animatable::EndEditParams(IObjParam*, std::uint32_t, Animatable*) {}

int Animatable::NumSubs() {
    return 0;
}
Animatable* Animatable::SubAnim(int) {
    return nullptr;
}
HostString Animatable::SubAnimName(int) {
    return {};
}
bool Animatable::AssignController(Animatable*, int) {
    return false;
}

int Animatable::NumKeys() {
    return 0;
}
TimeValue Animatable::GetKeyTime(int) {
    return 0;
}
int Animatable::GetKeyIndex(TimeValue) {
    return -1;
}
bool Animatable::GetNextKeyTime(TimeValue, std::uint32_t, TimeValue&) {
    return false;
}
void Animatable::DeleteKeyAtTime(TimeValue) {}
bool Animatable::IsKeyAtTime(TimeValue, std::uint32_t) {
    return false;
}
int Animatable::GetKeyTimes(Tab<TimeValue>&, Interval, std::uint32_t) {
    return 0;
}
void Animatable::DeleteTime(Interval, std::uint32_t) {}
void Animatable::DeleteKeys(std::uint32_t) {}
void Animatable::DeleteKeyByIndex(int) {}
void Animatable::SelectKeys(TrackHitTab&, std::uint32_t) {}
void Animatable::SelectKeyByIndex(int, std::uint32_t) {}
void Animatable::MouseCycleCompleted(TimeValue) {}
void Animatable::MouseCycleStarted(TimeValue) {}

ReferenceMaker::~ReferenceMaker() {
    ReferenceBook::Forget(*this);
}

IOResult ReferenceMaker::Save(ISave*) {
    return IO_OK;
}

// What is there and not read would be lost with the next save.
IOResult ReferenceMaker::Load(ILoad* load) {
    return load->OpenChunk() == IO_END ? IO_OK : IO_ERROR;
}

RefResult ReferenceMaker::NotifyRefChanged(Interval, RefTargetHandle, PartID&, RefMessage) {
    return REF_SUCCEED;
}

int ReferenceMaker::NumRefs() {
    return 0;
}
RefTargetHandle ReferenceMaker::GetReference(int) {
    return nullptr;
}
void ReferenceMaker::SetReference(int, RefTargetHandle) {}

void ReferenceMaker::ReplaceReference(int index, RefTargetHandle target) {
    if (index < 0 || index >= NumRefs()) return;
    RefTargetHandle const before = GetReference(index);
    if (before == target && (target == nullptr || ReferenceBook::Knows(*this, index, target)))
        return;
    if (target != nullptr && ReferenceBook::RefersTo(*target, *this)) return;
    if (theHold.Holding()) theHold.Put(new ReferenceRecord(*this, index, before, target));
    ReferenceBook::Point(*this, index, target);
}

void ReferenceMaker::DeleteMe() {
    ReferenceTarget* const target = asTarget_;
    const Graveyard::Pause pause;
    if (target != nullptr) target->LoseDependents();
    for (int index = 0; index < NumRefs(); ++index)
        ReplaceReference(index, nullptr);
    if (target != nullptr)
        Graveyard::Get().Release(*target);
    else
        DeleteThis();
}

RemapDir::~RemapDir() = default;

ReferenceTarget::~ReferenceTarget() {
    ReferenceBook::Forget(*this);
    asTarget_ = nullptr;
}

RefTargetHandle ReferenceTarget::Clone(RemapDir&) {
    return nullptr;
}

bool ReferenceTarget::HasDependents() const {
    return std::any_of(dependents_.begin(), dependents_.end(), [](const auto& dependent) {
        if (dependent.first == nullptr) return false;
        const ReferenceTarget* const target = dependent.first->asTarget_;
        return target == nullptr || !target->parked_;
    });
}

void ReferenceTarget::BaseClone(ReferenceTarget* from, ReferenceTarget* to, RemapDir& remap) {
    remap.AddEntry(from, to);
}

RefResult ReferenceTarget::NotifyDependents(Interval changed, PartID part, RefMessage message,
                                            SClass_ID classFilter, bool propagate,
                                            RefTargetHandle target) {
    if (dependents_.empty() || messageDepth >= kFarthestMessage) return REF_SUCCEED;
    RefTargetHandle const sender = target != nullptr ? target : this;
    return DependentsWalk::Tell(*this, {changed, sender, part, message, classFilter, propagate});
}

RefResult DependentsWalk::Tell(ReferenceTarget& target, const Message& message) {
    const Graveyard::Pause pause;
    const Deeper deeper;
    const DependentsWalk walk(target);
    for (std::size_t i = target.dependents_.size(); i-- > 0;) {
        ReferenceMaker* const maker = target.dependents_[i].first;
        if (maker == nullptr) continue;
        if (message.classFilter != NOTIFY_ALL && maker->SuperClassID() != message.classFilter)
            continue;
        ReferenceTarget* const above =
            message.propagate ? ReferenceBook::AsTarget(*maker) : nullptr;
        PartID partSeen = message.part;
        const RefResult answer =
            maker->NotifyRefChanged(message.changed, message.sender, partSeen, message.message);
        if (answer == REF_STOP || walk.TargetIsGone()) return answer;
        if (above == nullptr || target.dependents_[i].first != maker) continue;
        above->NotifyDependents(message.changed, partSeen, message.message, message.classFilter);
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
