#include "replay_core/state/takes.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <set>
#include <utility>

#include "replay_core/motion/numbers.h"

namespace replay {
namespace {

constexpr std::string_view kNameless = "Take";

std::size_t Depth(const Take* take) {
    std::size_t depth = 0;
    for (; take; take = take->Parent())
        ++depth;
    return depth;
}

bool IsBelow(const Take* take, const Take& above) {
    while (take && take != &above)
        take = take->Parent();
    return take;
}

}  // namespace

std::string StorableName(std::string_view name) {
    const bool isBlank = name.find_first_not_of(' ') == std::string_view::npos;
    return std::string(isBlank ? kNameless : name);
}

std::string NextName(std::string_view name) {
    const std::size_t blank = name.rfind(' ');
    if (blank != std::string_view::npos && blank > 0) {
        const std::string_view digits = name.substr(blank + 1);
        const std::optional<std::size_t> number = ParseCount(digits);
        // A larger number would not count on.
        if (number && digits.size() <= 9 && digits[0] != '+')
            return std::string(name.substr(0, blank + 1)) + std::to_string(*number + 1);
    }
    return std::string(name) + " 2";
}

std::vector<Take*> Takes::ForRecording(std::span<const std::string> names) {
    std::set<std::string> used;
    std::vector<Take*> takes;
    for (const std::string& name : names) {
        std::string own = StorableName(name);
        while (!used.insert(own).second)
            own = NextName(own);
        Take& take = Named(own);
        if (!take.IsThere()) PlaceBelow(take, takes.empty() ? nullptr : takes.back());
        takes.push_back(&take);
    }
    return takes;
}

void Takes::PlaceBelow(Take& take, const Take* before) {
    const bool isRoomBelow = !before || Depth(before) < kDeepest;
    const Take* const parent = isRoomBelow ? before : before->Parent();
    take.parent_ = IsBelow(parent, take) ? nullptr : parent;
}

Take& Takes::Named(std::string_view name) {
    const std::string storable = StorableName(name);
    Take* const take = Find(storable);
    return take ? *take : Add(storable, nullptr);
}

Take* Takes::Find(std::string_view name) const {
    const auto found = byName_.find(name);
    return found == byName_.end() ? nullptr : found->second;
}

// Room is made for what Drop does, which may not fail.
Take& Takes::Add(std::string name, const Take* parent) {
    const std::size_t all = dropped_.size() + takes_.size() + 1;
    if (dropped_.capacity() < all) dropped_.reserve(2 * all);
    Take*& place = byName_[name];  // null until the take is there
    place = takes_.emplace_back(std::make_unique<Take>(adaptor_, *this, std::move(name))).get();
    place->parent_ = parent;
    return *place;
}

void Takes::Drop() noexcept {
    for (const std::unique_ptr<Take>& take : takes_)
        take->Drop();
    byName_.clear();
    std::ranges::move(takes_, std::back_inserter(dropped_));
    takes_.clear();
}

const Take* StoredParent(const Take& take) {
    const Take* parent = take.Parent();
    while (parent && !parent->IsThere())
        parent = parent->Parent();
    return parent;
}

}  // namespace replay
