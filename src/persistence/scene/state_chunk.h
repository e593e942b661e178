#pragma once

#include "host/storage.h"

// The Core's state as a whole, in a chunk of the global utility. Without a Core, or where the Core
// has nothing to store, nothing is written; without a Core nothing is read.

IOResult SaveState(ISave& save);

// Each state chunk goes to the Core as it comes, and the plug-ins of older chunks at the end, in
// one element, also if there are none. A state chunk that cannot be read ends the loading at once,
// with the reader inside it.
IOResult LoadState(ILoad& load);

// The scene is left. Until then a save by a Core that came too late for the state stored in it says
// so in the trace, since the host may have nothing but what is saved now.
void LeaveStoredState();
