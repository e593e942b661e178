#include <deque>
#include <map>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "headless/comparison/comparison.h"

namespace headless {
namespace {

// Gives nodes of equal names below equal parents the same number.
class PlaceBook {
  public:
    std::vector<std::size_t> PlacesOf(const SceneDocument& document) {
        std::vector<std::size_t> places;
        for (const StoredNode& node : document.nodes) {
            const std::size_t parent = node.parent == kNoStoredParent ? 0 : places[node.parent];
            const auto next = numbers_.size() + 1;
            places.push_back(
                numbers_.try_emplace({parent, std::string_view(node.name)}, next).first->second);
        }
        return places;
    }

  private:
    std::map<std::pair<std::size_t, std::string_view>, std::size_t> numbers_;
};

class Matcher {
  public:
    Matcher(const SceneDocument& first, const SceneDocument& second)
        : first_(first.nodes), second_(second.nodes) {
        match_.inSecond.assign(first_.size(), kNoMatch);
        match_.inFirst.assign(second_.size(), kNoMatch);
        for (std::uint32_t i = 0; i < second_.size(); ++i)
            byHandle_.emplace(second_[i].handle, i);
    }

    template <class Agree>
    void ByHandle(Agree agree) {
        for (std::uint32_t i = 0; i < first_.size(); ++i) {
            const auto found = byHandle_.find(first_[i].handle);
            if (found != byHandle_.end() && agree(first_[i], second_[found->second]))
                Pair(i, found->second);
        }
    }

    void ByPlace(const std::vector<std::size_t>& inFirst,
                 const std::vector<std::size_t>& inSecond) {
        std::unordered_map<std::size_t, std::deque<std::uint32_t>> free;
        for (std::uint32_t i = 0; i < second_.size(); ++i)
            if (match_.inFirst[i] == kNoMatch) free[inSecond[i]].push_back(i);
        for (std::uint32_t i = 0; i < first_.size(); ++i) {
            const auto found = free.find(inFirst[i]);
            if (match_.inSecond[i] != kNoMatch || found == free.end() || found->second.empty())
                continue;
            Pair(i, found->second.front());
            found->second.pop_front();
        }
    }

    NodeMatch Take() { return std::move(match_); }

  private:
    void Pair(std::uint32_t first, std::uint32_t second) {
        if (match_.inSecond[first] != kNoMatch || match_.inFirst[second] != kNoMatch) return;
        match_.inSecond[first] = second;
        match_.inFirst[second] = first;
    }

    const std::vector<StoredNode>& first_;
    const std::vector<StoredNode>& second_;
    std::unordered_map<std::uint32_t, std::uint32_t> byHandle_;  // indices of the second
    NodeMatch match_;
};

}  // namespace

NodeMatch MatchNodes(const SceneDocument& first, const SceneDocument& second) {
    Matcher matcher(first, second);
    matcher.ByHandle([](const auto& a, const auto& b) { return a.name == b.name; });
    PlaceBook places;
    const auto inFirst = places.PlacesOf(first);
    matcher.ByPlace(inFirst, places.PlacesOf(second));
    matcher.ByHandle([](const auto&, const auto&) { return true; });
    return matcher.Take();
}

}  // namespace headless
