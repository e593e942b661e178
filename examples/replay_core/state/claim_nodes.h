#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "replay_core/state/read_state.h"
#include "replay_core/state/take.h"
#include "tvl/adaptor_interface.h"

namespace replay {

// Snapshot nodes on lend for stored nodes, in their order; null for those that the host does not
// have. They are given back at the end.
class FoundNodes {
  public:
    // By the tags that nodes bear, which a plug-in of that name has written.
    static FoundNodes ByTag(TVL::AdaptorInterface& adaptor, const std::string& pluginName,
                            std::span<const StoredNode> nodes);

    // By their tags or else by their numbers.
    static FoundNodes ByNumber(TVL::AdaptorInterface& adaptor, const std::string& pluginName,
                               std::span<const StoredNode> nodes);

    // By the host's handles, whosever the nodes are.
    static FoundNodes ByHandle(TVL::AdaptorInterface& adaptor,
                               std::span<const std::uint32_t> handles);

    ~FoundNodes();
    FoundNodes(FoundNodes&& other) noexcept = default;
    FoundNodes(const FoundNodes&) = delete;
    FoundNodes& operator=(const FoundNodes&) = delete;

    TVL::CoreNode* operator[](std::size_t index) const;
    bool HasAny() const;

  private:
    explicit FoundNodes(std::vector<TVL::CNode*> nodes) : nodes_(std::move(nodes)) {}

    std::vector<TVL::CNode*> nodes_;
};

// Makes the found node the take's under that name, with the take's book to hear of it. False if the
// node is somebody's already.
bool ClaimNode(TVL::CoreNode& found, Take& take, const std::string& name);

// Whether the host's name of a node agrees with what a plug-in of that name called it.
bool NameAgrees(TVL::CoreNode& found, std::string_view pluginName, const std::string& name);

}  // namespace replay
