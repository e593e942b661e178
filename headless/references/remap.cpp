#include "references/remap.h"

RefTargetHandle CloneMap::FindMapping(RefTargetHandle from) {
    const auto found = copies_.find(from);
    return found != copies_.end() ? found->second : nullptr;
}

void CloneMap::AddEntry(RefTargetHandle from, RefTargetHandle to) {
    if (from != nullptr) copies_[from] = to;
}

// The copy is entered although its Clone may have forgotten to call BaseClone.
RefTargetHandle CloneMap::CloneRef(RefTargetHandle from) {
    if (from == nullptr) return nullptr;
    if (const auto found = copies_.find(from); found != copies_.end()) return found->second;
    RefTargetHandle const to = from->Clone(*this);
    copies_[from] = to;
    return to;
}
