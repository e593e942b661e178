#pragma once

#include <memory>

#include "host/control.h"
#include "host/interface.h"

// A controller on its way to whoever is to refer to it. If nobody does in the end, because it was
// refused or something failed, it goes again: by the host's hand, since records of the undo stream
// can have met it.
struct EndUnlessReferredTo {
    void operator()(Control* control) const {
        if (!control->HasDependents()) control->DeleteMe();
    }
};
using NewControl = std::unique_ptr<Control, EndUnlessReferredTo>;

// Null if the host does not know the class.
inline NewControl MakeControl(SClass_ID superClass, Class_ID classId) {
    return NewControl(
        static_cast<Control*>(GetCOREInterface()->CreateInstance(superClass, classId)));
}
