#pragma once

#include <array>
#include <unordered_map>
#include <utility>

#include "recorder/stream/record.h"

namespace recorder::watching {

// What is known of objects, by their ids. An entry stays where it is until it is forgotten. Those
// that were asked for last are found without a search.
template <class Memory>
class Known {
  public:
    // Null for an object that is not known.
    Memory* Find(ObjectId id) {
        Recent& recent = RecentOf(id);
        if (recent.first == id && recent.second) return recent.second;
        const auto place = all_.find(id);
        if (place == all_.end()) return nullptr;
        recent = {id, &place->second};
        return recent.second;
    }

    // One that is not known is, from here on.
    Memory& operator[](ObjectId id) {
        Memory* const known = Find(id);
        return known ? *known : all_[id];
    }

    void Forget(ObjectId id) {
        RecentOf(id) = {};
        all_.erase(id);
    }

    auto begin() { return all_.begin(); }
    auto end() { return all_.end(); }
    auto begin() const { return all_.begin(); }
    auto end() const { return all_.end(); }

  private:
    using Recent = std::pair<ObjectId, Memory*>;
    Recent& RecentOf(ObjectId id) { return recent_[id % recent_.size()]; }

    std::unordered_map<ObjectId, Memory> all_;
    std::array<Recent, 256> recent_{};
};

}  // namespace recorder::watching
