#pragma once

#include "host/storage.h"
#include "tvl/xml_node.h"

// The Core's state as a whole, in a chunk of the global utility. Without a Core, or where the Core
// has nothing to store, nothing is written; without a Core nothing is read.

// What is known of the state of the Core and the scene that are there now.
struct StateRecord {
    bool isTagLost = false;  // an owner could not give its state when the save was announced
    bool hadState = false;   // the Core gave a whole state, or was given one
};

// The adaptor's.
StateRecord& RecordOfState();

// Fails where the Core could not give its state, here or for the tags: a scene file without it
// would take the place of one that has it.
IOResult SaveState(ISave& save);

// False if the Core could not take the state: it threw, or could not be answered when it asked for
// its nodes, or there is none.
bool HandToCore(const XMLNode& state);

// Each state chunk goes to the Core as it comes, and the plug-ins of older chunks at the end, in
// one element, also if there are none. What the Core could not take makes the loading fail, when
// all has been handed over, so that the host keeps it. A state chunk that cannot be read ends the
// loading at once, with the reader inside it; what the Core has not got of those ahead of it, each
// save that writes a state writes ahead of that until the scene is left.
IOResult LoadState(ILoad& load);

// A plug-in's state as an earlier version stored it, in a tree of chunks; older_state.cpp has its
// form. The reader stands inside the outermost one, and does so again afterwards. An element
// "TVL_Plugin" as it is stored today. If anything is missing, of another id or cut off, an empty
// node.
XMLNode ReadOlderState(ILoad& load);

// The scene is left. Until then a save by a Core that came too late for the state stored in it says
// so in the trace, since the host may have nothing but what is saved now.
void LeaveStoredState();
