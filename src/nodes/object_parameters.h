#pragma once

#include "host/object.h"

// What can be animated on an object the host keeps in those of its parts that are named
// "Parameters".

inline int PartCount(Object* object) {
    return object ? object->NumSubs() : 0;
}

// The "Parameters" at a place among the parts; null if that is another part, or has no parameter at
// this index.
inline Animatable* ParametersAt(Object* object, int part, int index) {
    if (part >= PartCount(object) || object->SubAnimName(part) != "Parameters") return nullptr;
    Animatable* const parameters = object->SubAnim(part);
    return parameters && index < parameters->NumSubs() ? parameters : nullptr;
}

// Runs `visit(parameters, index)` for every parameter of the object. That may end the object, so
// `find()` gives it anew for each step; null: it is gone.
template <class Find, class Visit>
void ForEachParameter(Find find, Visit visit) {
    for (int part = 0; part < PartCount(find()); ++part) {
        for (int index = 0; Animatable* const parameters = ParametersAt(find(), part, index);
             ++index)
            visit(*parameters, index);
    }
}
