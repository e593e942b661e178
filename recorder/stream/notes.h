#pragma once

// What whoever drives the host can tell a tape beside the calls that cross the boundary, since it
// alone knows it: a word, and what it is about. A tape of a host that tells nothing has none. A
// step is told ahead of the calls that come of it, the others behind these, and only if they were
// done.
namespace recorder::note {

inline constexpr char kStep[] = "step";  // a step that is done now, in the words of `run`
inline constexpr char kOpened[] =
    "opened";  // a scene: its digest in hexadecimal, a blank, the path
inline constexpr char kMerged[] = "merged";  // the same
inline constexpr char kSaved[] = "saved";    // the same, of a save that succeeded: a checkpoint
inline constexpr char kNew[] = "new";        // the scene was emptied
inline constexpr char kScene[] = "scene";  // one that travels along: its digest, a blank, its bytes

}  // namespace recorder::note
