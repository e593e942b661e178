#pragma once

#include <cstddef>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "recorder/stream/record.h"

namespace player {

// The host's stack of undo steps, as far as a tape tells of it: which groups of the Core's stand,
// and which the user has taken back. A step is taken back after all that came later, so one sign is
// enough for many. What a host tells by notes is taken at its word, but where signs that must come
// with it are missing: then steps lay above that no tape knows of.
class UndoHistory {
  public:
    // What a group did by which its undo and redo can be told, while the group is open.
    void AddChunk(std::size_t group, recorder::ObjectId chunk);
    void AddMade(std::size_t group, recorder::ObjectId node, bool isHeard);
    void AddDeleted(std::size_t group, recorder::ObjectId node);

    void Push(std::size_t group);
    void PushOther();  // a step of somebody else's
    void Cancel(std::size_t group) { undone_.insert(group); }
    void Flush();  // what was taken back stays so, and nothing else can be

    // Signs of an undo or redo by the user.
    void SeeUndone(recorder::ObjectId chunk);
    void SeeRedone(recorder::ObjectId chunk);
    void SeeRemoved(recorder::ObjectId node);
    void SeeRestored(recorder::ObjectId node);

    // The host tells that it now undoes or redoes so many steps; signs of that follow.
    void ExpectUndo(std::size_t steps);
    void ExpectRedo(std::size_t steps);
    void EndSigns();

    bool IsUndone(std::size_t group) const { return undone_.contains(group); }

    // Whether the node is in the scene, as far as groups have made or deleted it.
    bool IsPresent(recorder::ObjectId node) const;

  private:
    static constexpr std::size_t kOther = ~std::size_t{0};
    using Steps = std::vector<std::size_t>;  // the newest last
    using GroupOf = std::unordered_map<recorder::ObjectId, std::size_t>;

    void MoveUpTo(std::optional<std::size_t> group, Steps& from, Steps& to);
    void MoveLast(Steps& from, Steps& to);
    static std::optional<std::size_t> DepthIn(const Steps& steps, const GroupOf& groups,
                                              recorder::ObjectId id);
    void SeeNode(recorder::ObjectId node, const GroupOf& undone, const GroupOf& redone);

    Steps done_;
    Steps taken_;  // back, and may be done again
    std::unordered_set<std::size_t> undone_;
    GroupOf chunks_;
    GroupOf made_;
    GroupOf deleted_;
    std::unordered_set<std::size_t> telling_;  // groups whose undo cannot come without a sign
    Steps expected_;                           // by a note, the first one first
    bool isUndoExpected_ = false;
    std::unordered_set<std::size_t> seen_;  // signs that came since
};

}  // namespace player
