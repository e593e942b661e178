#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "player/recovery/checkpoints.h"
#include "recorder/tape/read_tape.h"
#include "tvl/xml_node.h"

namespace player {

// What a tape tells of a node.
struct TapeNode {
    recorder::ObjectId id = 0;
    recorder::ObjectId owner = 0;
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
    recorder::ObjectId node = 0;
    double seconds = 0;
};

// A call of the Core's that is to be made once more, and how the host stood ahead of it.
struct MissingCall {
    std::size_t record = 0;
    std::optional<std::size_t> answer;  // a record; none if everything ended in the call
    bool isRecording = false;
    std::optional<double> seconds;  // the host's time, if it is known
    Lent lent;                      // of one on a snapshot
    bool isChange = false;          // of the scene
    bool isSample = false;          // the same, by a snapshot at its time
};

enum class Fate { kFinished, kOpen, kCancelled, kUndone };

// An outermost undo group that reaches beyond the base; also all that was done outside of any.
struct WorkGroup {
    std::string name;
    bool isGroup = true;
    Fate fate = Fate::kOpen;
    std::uint64_t firstCall = 0;
    bool isBegunBefore = false;  // the scene has its beginning

    // Of what is beyond the base.
    std::size_t changes = 0;             // calls that change the scene
    std::size_t samples = 0;             // transforms and lenses that were written
    std::set<double> moments;            // for which, in seconds
    std::set<recorder::ObjectId> nodes;  // that were made or changed
};

// What a scene lacks of a session's work.
struct MissingWork {
    Checkpoint base;
    std::vector<WorkGroup> groups;
    std::vector<MissingCall> calls;             // those that are to be made, in their order
    std::vector<TapeNode> nodes;                // that were there at the base, first those that
                                                // calls name
    std::size_t neededNodes = 0;                // as many of them
    std::set<recorder::ObjectId> stoppedNodes;  // that had been taken out of recording by then
    std::map<recorder::ObjectId, std::string> plugins;  // of all owners

    std::optional<double> seconds;  // the host's time at the end, if it is known

    // What the Core last gave as its state behind the base; none if it was not asked there.
    std::optional<XMLNode> coreState;
    std::map<recorder::ObjectId, XMLNode> partsOfOwners;

    // What else was done to the scene and is not brought back, a line each.
    std::vector<std::string> leftOut;

    bool HasWork() const;       // that can be brought back, open groups included
    bool HasOpenGroup() const;  // that has done something
};

enum class OpenGroups { kLeftOut, kTaken };

// `base` is one of the session's. The work ends where the scene was replaced, or with the session.
MissingWork FindMissingWork(const recorder::TapeSession& session,
                            const std::vector<Checkpoint>& checkpoints, const Checkpoint& base,
                            OpenGroups openGroups);

}  // namespace player
