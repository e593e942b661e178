#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "player/recovery/missing_work.h"
#include "player/recovery/recovery_core.h"

namespace player {

// The nodes that missing work names, found again in the scene that is open and bound to those of
// the tape: by their marks, and by what they were called in the host.
class FoundNodes {
  public:
    FoundNodes(const MissingWork& work, RecoveryCore& core);
    ~FoundNodes();  // gives back the snapshot nodes that stand for some
    FoundNodes(const FoundNodes&) = delete;
    FoundNodes& operator=(const FoundNodes&) = delete;

    // Looks again for those that are missing, once there are more nodes.
    void Find();

    // A call is about to end the node.
    void Ends(ObjectId node);

    // One that came otherwise is called so in the host.
    void Name(ObjectId node, std::string name) { names_[node] = std::move(name); }

    bool IsFound(ObjectId node) const { return names_.contains(node); }

    // What a node of the tape is called in the host; else what the tape calls it.
    std::string NameOf(ObjectId node) const;

  private:
    struct Found {
        std::uint32_t handle = 0;
        RecoveryCore::MarkedNode* marked = nullptr;
    };
    enum class Likeness { kMarkAndName, kMark, kName };
    Found FindInScene(const TapeNode& node, Likeness likeness);
    bool Bind(const TapeNode& node, Likeness likeness);

    const MissingWork& work_;
    RecoveryCore& core_;
    LiveObjects& objects_;
    std::vector<const TapeNode*> unbound_;
    std::set<std::uint32_t> usedHandles_;
    std::vector<TVL::CoreNode*> borrowed_;
    std::map<ObjectId, std::string> names_;  // of those that are here
};

}  // namespace player
