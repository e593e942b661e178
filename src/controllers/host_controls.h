#pragma once

#include <memory>
#include <vector>

#include "host/control.h"

// What is done with controllers of any class, the host's own above all.

// A controller on its way to whoever is to refer to it. If nobody does in the end, because it was
// refused or something failed, it goes again: by the host's hand, since records of the undo stream
// can have met it.
struct EndUnlessReferredTo {
    void operator()(Control* control) const;
};
using NewControl = std::unique_ptr<Control, EndUnlessReferredTo>;

// Null if the host does not know the class.
NewControl MakeControl(SClass_ID superClass, Class_ID classId);

// The times, rising, at which a table that copies `source` samples it: every frame from the first
// to the last key of the controller and of its direct parts; none without keys. A range of more
// than a million frames, as one stray key can make it, is sampled at the keys themselves.
std::vector<TimeValue> SamplingTimes(Control& source);
