#pragma once

// What a Core left behind when it was detached.
struct SweptNodes {
    int realNodes = 0;      // listed nodes, destroyed
    int recordedNodes = 0;  // nodes that undo records held, destroyed; their records are empty now
    int snapshotNodes = 0;  // not given back since the last sweep; know no owner or listener now
    int snapshots = 0;      // outlived their node, freed

    bool IsEmpty() const {
        return realNodes == 0 && recordedNodes == 0 && snapshotNodes == 0 && snapshots == 0;
    }
};

// To be called when a Core has left: from here on nothing calls its listeners and owners, neither
// through nodes nor through undo and redo, and a Core that comes later finds every scene node free
// to be claimed. Nothing of the Core's is called meanwhile, so its library may be gone already.
SweptNodes SweepNodes();
