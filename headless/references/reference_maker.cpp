#include "headless/references/graveyard.h"
#include "headless/references/reference_book.h"
#include "headless/references/reference_record.h"
#include "host/hold.h"
#include "host/reference.h"

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
    auto* const target = dynamic_cast<ReferenceTarget*>(this);
    const Graveyard::Pause pause;
    if (target != nullptr) target->LoseDependents();
    for (int index = 0; index < NumRefs(); ++index)
        ReplaceReference(index, nullptr);
    if (target != nullptr)
        Graveyard::Get().Release(*target);
    else
        DeleteThis();
}
