#include "headless/references/copy_map.h"

#include <algorithm>

#include "headless/copies.h"
#include "headless/hold/graveyard.h"
#include "headless/references/reference_book.h"

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
    RefTargetHandle& to = copies_[from];
    return to = from->Clone(*this);
}

bool CopyMap::IsWhole() const {
    return std::ranges::all_of(copies_, [](const auto& pair) { return pair.second != nullptr; });
}

std::vector<std::unique_ptr<ReferenceRecord>> CopyMap::Replacements() const {
    std::vector<std::unique_ptr<ReferenceRecord>> records;
    for (const auto& [from, to] : copies_) {
        if (from == to) continue;
        for (const auto& [maker, index] : ReferenceBook::DependentsOf(*from)) {
            const bool isCopied = std::ranges::any_of(
                copies_, [made = maker](const auto& pair) { return pair.first == made; });
            if (maker == nullptr || isCopied) continue;
            records.push_back(std::make_unique<ReferenceRecord>(*maker, index, from, to));
        }
    }
    return records;
}

void CopyMap::Discard() {
    for (const auto& [from, to] : copies_)
        if (to != nullptr && from != to) Graveyard::Get().Release(*to);
    copies_.clear();
}

RefTargetHandle CopyOf(ReferenceTarget& from) {
    return CopyMap().CloneRef(&from);
}

}  // namespace headless
