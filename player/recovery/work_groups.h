#pragma once

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "player/recovery/session_calls.h"
#include "player/recovery/undo_history.h"

namespace player {

enum class Fate { kFinished, kOpen, kCancelled, kUndone };

// An outermost undo group; a step that a call made of itself; or all that was done outside of any.
struct WorkGroup {
    std::string name;
    bool isGroup = true;
    Fate fate = Fate::kOpen;
    std::uint64_t firstCall = 0;
    bool isBegunBefore = false;  // the scene that work is looked for has its beginning

    // Of what that scene lacks.
    std::size_t changes = 0;   // calls that change the scene
    std::size_t samples = 0;   // transforms and lenses that were written
    std::set<double> moments;  // for which, in seconds
    std::set<ObjectId> nodes;  // that were made or changed
};

// The groups and recordings of a session, and what became of them, as its records are gone through.
class WorkGroups {
  public:
    static constexpr std::size_t kOutside = 0;  // the group of what was done in none

    explicit WorkGroups(const SessionCalls& calls);

    // Undo, groups and recordings of an earlier scene say nothing of the next one's.
    void BeginScene();

    // A call of the Core's: what begins a group is seen ahead of it, and the rest behind it.
    void SeeBegin(const Record& call);
    void SeeCall(const Record& call, bool isChange);
    void SeeCallOfAdaptor(const Record& call, bool isSignOfUndo);
    void SeeEnd(const Record& call, bool isThrown);
    void SeeStep(std::string_view word, std::size_t count);
    void EndSigns() { history_.EndSigns(); }
    void End();  // of all records

    std::size_t Current() const { return current_; }
    bool IsRecording() const { return !recordings_.empty(); }
    const UndoHistory& History() const { return history_; }
    std::vector<WorkGroup>& All() { return groups_; }

  private:
    void Begin(const Record& call, std::string_view name, bool isGroup);
    void EndGroup(bool isCancelled);
    void SeeRecording(const Record& call);

    const SessionCalls& calls_;
    std::vector<WorkGroup> groups_;
    UndoHistory history_;
    std::size_t depth_ = 0;
    std::size_t current_ = kOutside;
    bool isCancelling_ = false;
    bool hasSteps_ = false;           // the group has done what makes it a step
    std::size_t ownStep_ = kOutside;  // that a call which is open makes
    bool isOwnStepMade_ = false;
    std::vector<std::uint64_t> recordings_;  // the calls that began those that are open
};

}  // namespace player
