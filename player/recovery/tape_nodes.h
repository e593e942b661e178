#pragma once

#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "player/recovery/session_calls.h"

namespace player {

// What a tape tells of a node.
struct TapeNode {
    ObjectId id = 0;
    ObjectId owner = 0;
    std::string plugin;                  // of the owner
    std::string name;                    // its own
    std::vector<std::string> hostNames;  // all that it had, the newest first
    std::string storedPlugin;  // by which a scene file that was opened had it; empty for none
    std::string storedName;
    bool isReal = false;  // it has an owner

    void AddHostName(std::string_view hostName);
};

// What a snapshot was lent for.
struct Lent {
    ObjectId node = 0;
    double seconds = 0;
};

// What is known of a session's nodes and snapshots at one moment, if all records up to there were
// seen.
class TapeNodes {
  public:
    explicit TapeNodes(const SessionCalls& calls) : calls_(calls) {}

    void SeeCall(const Record& call);  // of the Core's
    void SeeFacts(const Record& record);
    void Forget(ObjectId node) { nodes_[node].isReal = false; }

    const std::unordered_map<ObjectId, TapeNode>& All() const { return nodes_; }
    TapeNode Find(ObjectId id) const;
    bool IsReal(ObjectId id) const;

    // Nothing where that is no snapshot.
    Lent LentAs(ObjectId snapshot) const;

    // That were taken out of recording.
    const std::set<ObjectId>& Stopped() const { return stopped_; }

  private:
    void SeeMade(const Record& call);
    void SeeFound(const Record& call);

    const SessionCalls& calls_;
    std::unordered_map<ObjectId, TapeNode> nodes_;
    std::unordered_map<ObjectId, Lent> lent_;
    std::set<ObjectId> stopped_;
};

}  // namespace player
