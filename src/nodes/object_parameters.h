#pragma once

#include "host/object.h"

// Runs `visit(parameters, index)` for every part of the object's parts that are named "Parameters",
// where the host keeps what can be animated on an object.
template <class Visit>
void ForEachParameter(Object* object, Visit visit) {
    if (!object) return;
    for (int part = 0; part < object->NumSubs(); ++part) {
        if (object->SubAnimName(part) != "Parameters") continue;
        Animatable* const parameters = object->SubAnim(part);
        if (!parameters) continue;
        for (int index = 0; index < parameters->NumSubs(); ++index)
            visit(*parameters, index);
    }
}
