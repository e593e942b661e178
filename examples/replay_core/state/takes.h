#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "replay_core/state/take.h"
#include "tvl/adaptor_interface.h"

namespace replay {

// The name under which a take can be stored: a text cannot bring back nothing but blanks, which
// become "Take".
std::string StorableName(std::string_view name);

// The one after it, as in "walk", "walk 2", "walk 3".
std::string NextName(std::string_view name);

// All takes of the scene, each under a name of its own: of stored plug-ins that share a name only
// the first would be read.
class Takes {
  public:
    explicit Takes(TVL::AdaptorInterface& adaptor) : adaptor_(adaptor) {}
    Takes(const Takes&) = delete;
    Takes& operator=(const Takes&) = delete;

    // Parents and children together are no deeper than this when captures are recorded.
    static constexpr std::size_t kDeepest = 3;

    // In the order in which they came, which is that of siblings as well. Some may have no node in
    // the scene.
    const std::vector<std::unique_ptr<Take>>& All() const { return takes_; }

    // The takes for captures that are recorded in one go, one for each name, new where there was
    // none. Captures of equal names get takes of their own ("walk", "walk 2"). A take that is not
    // in the scene yet goes below the one before it or, at the greatest depth, beside it.
    std::vector<Take*> ForRecording(std::span<const std::string> names);

    // The take of that name, new at the top if there was none.
    Take& Named(std::string_view name);

    // Null if there is none.
    Take* Find(std::string_view name) const;

    // A new take of that name, which must be free, below `parent` or, if that is null, at the top.
    Take& Add(std::string name, const Take* parent);

    // The scene goes away, or the Core does: there are no takes any more. Undo records may name
    // them still, so they live on out of sight.
    void Drop() noexcept;

  private:
    void PlaceBelow(Take& take, const Take* before);

    TVL::AdaptorInterface& adaptor_;
    std::vector<std::unique_ptr<Take>> takes_;
    std::map<std::string, Take*, std::less<>> byName_;
    std::vector<std::unique_ptr<Take>> dropped_;
};

// The nearest take above that is stored, or null.
const Take* StoredParent(const Take& take);

}  // namespace replay
