#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "player/recovery/checkpoints.h"
#include "player/recovery/tape_nodes.h"
#include "player/recovery/work_groups.h"
#include "recorder/tape/read_tape.h"
#include "tvl/xml_node.h"

namespace player {

// A call of the Core's that is to be made once more, and how the host stood ahead of it.
struct MissingCall {
    std::size_t record = 0;
    std::optional<std::size_t> answer;  // a record; none if everything ended in the call
    bool isRecording = false;
    std::optional<double> seconds;  // the host's time, if it is known
    Lent lent;                      // of one on a snapshot
    bool isChange = false;          // of the scene
    bool isSample = false;          // the same, by a snapshot at its time

    // The node that the call is on, or whose snapshot.
    ObjectId Node(const Record& call) const {
        return lent.node != 0 ? lent.node : call.head.object;
    }
};

// What a scene lacks of a session's work.
struct MissingWork {
    Checkpoint base;
    std::vector<WorkGroup> groups;
    std::vector<MissingCall> calls;           // those that are to be made, in their order
    std::vector<TapeNode> nodes;              // that were there at the base, first those that
                                              // calls name
    std::set<ObjectId> stoppedNodes;          // that had been taken out of recording by then
    std::map<ObjectId, std::string> plugins;  // of all owners

    std::optional<double> seconds;  // the host's time at the end, if it is known

    // What the Core last gave as its state behind the base; none if it was not asked there.
    std::optional<XMLNode> coreState;
    std::map<ObjectId, XMLNode> partsOfOwners;

    // What else was done to the scene and is not brought back, a line each.
    std::vector<std::string> leftOut;

    bool HasWork() const;       // that can be brought back, open groups included
    bool HasOpenGroup() const;  // that has done something
};

enum class OpenGroups { kLeftOut, kTaken };
bool ComesBack(const WorkGroup& group, OpenGroups openGroups);

// `base` is one of the session's. The work ends where the scene was replaced, or with the session.
MissingWork FindMissingWork(const recorder::TapeSession& session,
                            const std::vector<Checkpoint>& checkpoints, const Checkpoint& base,
                            OpenGroups openGroups);

}  // namespace player
