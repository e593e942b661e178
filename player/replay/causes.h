#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "player/replay/undo_steps.h"
#include "recorder/tape/read_tape.h"

namespace player {

// What the host did that calls of the adaptor's came of.
struct Cause {
    std::vector<std::string> steps;  // of `run`; none if it cannot be told
    std::string whyNot;

    // Ahead of the steps: what the user selects and deletes, some nodes, or all of some owners'.
    bool isDeletion = false;
    std::set<ObjectId> nodes;
    std::set<ObjectId> owners;

    // A silent step of the user's may stand above what is undone or redone.
    bool isRepeated = false;

    bool isEnd = false;      // the Core was detached, and not by the panel
    bool isNothing = false;  // a mere question, which nobody needs to have done anything for
    std::string digest;      // of the scene that is opened or merged
};

// A text as a word of a step of `run`.
std::string AsWord(std::string_view text);

// Tells what the host did from the outermost calls on a tape alone, and from notes on scenes where
// there are any. Where several things fit, what the Core did before decides.
class Causes {
  public:
    explicit Causes(const recorder::TapeSession& session);

    // Of the outermost call at a place among the session's records. Places are asked for in their
    // order.
    Cause Of(std::size_t place);

  private:
    struct Row;
    class Event;
    static const std::vector<Row>& Table();

    Cause Time(std::size_t place);
    Cause Show(std::size_t place);
    Cause NewOrOpen(std::size_t place);
    Cause SaveOrDetach(std::size_t place);
    Cause Merge(std::size_t place);
    Cause Deletion(std::size_t place);
    Cause Question(std::size_t place);
    Cause UndoOrRedo(std::size_t place);
    Cause Release(std::size_t place);
    Cause Detach(std::size_t place);

    std::string SavedAs(const Event& event) const;
    std::string SavedWith(const Event& event) const;

    void Follow(std::size_t place);
    void FollowSave(const Record& answer);

    const std::vector<Record>& records_;

    struct Saved {
        std::string name;
        std::vector<std::string> parts;  // what the Core stored, as texts
    };

    // As far as the tape was followed.
    std::vector<Saved> saved_;
    Saved saving_;
    UndoSteps undo_;
    std::size_t followed_ = 0;
    std::size_t askedUntil_ = 0;  // calls up to there are known to be questions
};

}  // namespace player
