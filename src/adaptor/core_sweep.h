#pragma once

#include <cstdint>
#include <limits>

// What a Core should have taken with it when it was detached, and did not. Taken down while its
// library is still there; nothing of the Core's is called but the ends of undo chunks and the
// message nodes that still stand. A warning in the trace tells what there was, together with the
// `releasedChunks` that went before the Core did. A nest of undo groups ends as its last
// EndUndoGroup would, but one that began behind the first `nests` is cancelled: a routine threw
// that began it.
void SweepCore(int releasedChunks, std::uint32_t nests);

inline constexpr std::uint32_t kNoNests = std::numeric_limits<std::uint32_t>::max();
