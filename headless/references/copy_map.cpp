#include "references/copy_map.h"

#include "headless/copies.h"

namespace headless {

RefTargetHandle CopyMap::FindMapping(RefTargetHandle from) {
    const auto found = copies_.find(from);
    return found != copies_.end() ? found->second : nullptr;
}

void CopyMap::AddEntry(RefTargetHandle from, RefTargetHandle to) {
    if (from != nullptr) copies_[from] = to;
}

// The copy is entered although its Clone may have forgotten to call BaseClone.
RefTargetHandle CopyMap::CloneRef(RefTargetHandle from) {
    if (from == nullptr) return nullptr;
    if (const auto found = copies_.find(from); found != copies_.end()) return found->second;
    RefTargetHandle const to = from->Clone(*this);
    copies_[from] = to;
    return to;
}

RefTargetHandle CopyOf(ReferenceTarget& from) {
    return CopyMap().CloneRef(&from);
}

}  // namespace headless
