#pragma once

#include "foundation/thrown.h"
#include "host/hold.h"

// Whether a hold can be begun: none is open, and the host is not undoing, redoing or cancelling.
inline bool CanBeginHold() {
    return !theHold.Holding() && !theHold.RestoreOrRedoing();
}

// The bracket of an operation that is one undo step by itself: it begins the hold if that is off,
// and at its end accepts under its label the hold that it began. Inside an open hold it does
// nothing, and the operation becomes part of that step; while the host undoes it does nothing
// either, and the operation leaves no record.
class OwnStep {
  public:
    // The label outlives the bracket.
    explicit OwnStep(const char* stepLabel) : label(stepLabel), begun(CanBeginHold()) {
        if (begun) theHold.Begin();
    }
    // Records of others can be in the hold, and throw when it ends.
    ~OwnStep() {
        if (!begun || !theHold.Holding()) return;
        TVL::TraceIfThrown(label, [this] { theHold.Accept(label); });
    }
    OwnStep(const OwnStep&) = delete;
    OwnStep& operator=(const OwnStep&) = delete;

  private:
    const char* label;
    bool begun;
};
