#pragma once

#include <exception>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/hold.h"

namespace headless {

// For work of several parts, each of them some guest's, that must all be done: an exception waits
// until the others have had their turn. Only the first is kept.
class FirstThrown {
  public:
    template <class Part>
    void Try(Part part) noexcept {
        try {
            part();
        } catch (...) {
            if (!thrown_) thrown_ = std::current_exception();
        }
    }

    void Rethrow() const {
        if (thrown_) std::rethrow_exception(thrown_);
    }

  private:
    std::exception_ptr thrown_;
};

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

    // The step that is next comes first.
    std::vector<std::string> UndoLabels() const { return LabelsOf(undo_); }
    std::vector<std::string> RedoLabels() const { return LabelsOf(redo_); }

    // A record is there or can still come.
    bool IsOccupied() const;

  private:
    using Records = std::vector<std::unique_ptr<RestoreObj>>;
    struct Step {
        std::string label;
        Records records;  // in the order in which they were put
    };

    template <class RunAll>
    bool Turn(std::vector<Step>& from, std::vector<Step>& to, RunAll runAll);
    static std::vector<std::string> LabelsOf(const std::vector<Step>& steps);

    template <class Place, class Act>
    FirstThrown Run(const char* what, Place first, Place last, Act act);
    void PutOrDestroy(RestoreObj* record);
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

// How the host changes a scene: a change is written as a flip, of which making, taking back and
// making again are one and the same act, such as swapping a value with a kept one. Makes the
// change, as a record of the hold if one is open. What the flip refers to must live as
// long as the record, so it holds nodes by NodePtr.
void Undoably(std::function<void()> flip);

}  // namespace headless
