#pragma once

// What a Core should have taken with it when it was detached, and did not. Taken down while its
// library is still there; nothing of the Core's is called but the ends of undo chunks and the
// message nodes that still stand. A warning in the trace tells what there was, together with the
// `releasedChunks` that went before the Core did.
void SweepCore(int releasedChunks);
