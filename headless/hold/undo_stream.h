#pragma once

#include <memory>
#include <string>
#include <vector>

#include "headless/hold/first_thrown.h"
#include "host/hold.h"

namespace headless {

// The steps that can be undone and redone, and the one hold that is to become the next of them.
//
// Records are destroyed newest first. Whatever they do when they are restored, redone or destroyed,
// they may call back anything here: while a step is being restored or redone, Begin, Accept,
// Cancel, Undo and Redo have no effect, a record that is put is destroyed at once, and a Flush
// waits for the end of the step. When a record throws, the others have their turn all the same, the
// step is then where it would be without, and the first exception comes out.
class UndoStream {
  public:
    static UndoStream& Get();

    // A second Begin has no effect; nor has an Accept or a Cancel without a Begin. All are
    // breaches.
    void Begin();
    void Accept(const char* label);  // the steps to be redone go; a hold without records is no step
    void Cancel();
    void Put(RestoreObj* record);

    bool Holding() const { return holding_; }
    bool RestoreOrRedoing() const { return running_; }

    // False, and nothing done: no such step, a hold is open, or a step is running.
    bool Undo();
    bool Redo();

    // Empties both stacks. A hold that is open stays, with its records.
    void Flush();

    std::vector<std::string> UndoLabels() const;  // the next one to be undone first
    std::vector<std::string> RedoLabels() const;  // the next one to be redone first

    // A record is there or can still come.
    bool IsOccupied() const;

  private:
    using Records = std::vector<std::unique_ptr<RestoreObj>>;
    struct Step {
        std::string label;
        Records records;  // in the order in which they were put
    };

    template <class Place, class Act>
    FirstThrown Run(const char* what, Place first, Place last, Act act);
    bool Takes(const char* call) const;  // a hold is open for this call
    void FlushIfAsked();
    void Drop(Records records);
    void Drop(std::vector<Step> steps);  // the last one first

    std::vector<Step> undo_;  // the oldest first
    std::vector<Step> redo_;  // the newest first
    Records open_;
    bool holding_ = false;
    bool running_ = false;
    bool flushWaits_ = false;
    int dropping_ = 0;  // runs of records that are being destroyed
};

}  // namespace headless
