#pragma once

#include "host/storage.h"

// The Core's state as a whole, in a chunk of the global utility. Without a Core, or where the Core
// has nothing to store, nothing is written; without a Core nothing is read.

IOResult SaveState(ISave& save);

// Each state chunk goes to the Core as it comes, and the plug-ins of older chunks at the end, in
// one element, also if there are none. A state chunk that cannot be read ends the loading at once,
// with the reader inside it.
IOResult LoadState(ILoad& load);
