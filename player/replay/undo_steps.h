#pragma once

#include <optional>
#include <set>
#include <vector>

#include "player/live_objects.h"
#include "recorder/tape/read_tape.h"

namespace player {

// The undo steps that a session's Core made, and which of them the host takes back or does again,
// as it shows in what listeners and chunks are told of it.
class UndoSteps {
  public:
    explicit UndoSteps(const recorder::TapeSession& session);

    // Each record, in its order, up to the place that is asked for.
    void Follow(const Record& record);

    // What the host did if all calls from a place on come of it, as a step of `run`: "undo" or
    // "redo", and then the step was taken. Null if it can be neither, or both. The second is for a
    // place where the time is told first.
    const char* Take(std::size_t place);
    const char* TakeWithTime(std::size_t place);

  private:
    // What a step did of which the Core hears when it is undone or redone, in its order.
    struct Deed {
        ObjectId object;
        Operation undone;
        Operation redone;
    };
    struct Step {
        std::vector<Deed> deeds;
        std::optional<double> otherTime;  // to which undo or redo takes a host that has recorded
    };
    struct Direction;
    struct Told;
    Direction Back();
    Direction Forth();
    std::vector<Told> ToldFrom(std::size_t place) const;
    Step* StepOf(const Direction& direction, const std::vector<Told>& told);
    const char* Go(const Direction& direction, const Step* step);
    void Note(ObjectId object, Operation undone, Operation redone);

    const std::vector<Record>& records_;
    std::set<ObjectId> heardOf_;  // nodes of which the Core hears
    std::vector<Step> undo_;      // the newest last
    std::vector<Step> redo_;
    Step open_;
    int groups_ = 0;
    bool isCancelled_ = false;
    double now_ = 0;
};

}  // namespace player
