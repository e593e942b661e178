#pragma once

#include <cstdint>

// What the contract asks of a Core as far as it can be seen where calls cross, a row each: the
// rule, its name, and what is wrong. A rule is broken by a call, or by what is left when the Core
// leaves. docs/watch.md says of each why it matters, and what to do.
namespace recorder::watching {

#define WATCH_RULES(RULE)                                                                        \
    RULE(kUseAfterRelease, "use-after-release", "the snapshot has been given back")              \
    RULE(kReleasedTwice, "released-twice", "it has been given back already")                     \
    RULE(kReleasedElsewhere, "released-elsewhere",                                               \
         "the snapshot was lent by another node, or by another operation")                       \
    RULE(kSnapshotKept, "snapshot-not-given-back",                                               \
         "the snapshot is still out when its node ends, or when the Core leaves")                \
    RULE(kSnapshotNodeKept, "snapshot-node-not-given-back",                                      \
         "the Core leaves without ReleaseNode on what it was lent")                              \
    RULE(kNodeAfterEnd, "node-after-end", "the node has ended")                                  \
    RULE(kNodeKept, "node-not-destroyed", "the Core leaves, and its node is still there")        \
    RULE(kNodeKeptOverReset, "node-kept-over-reset",                                             \
         "ResetCore has returned, and the node is still there")                                  \
    RULE(kRealNodeReleased, "real-node-released", "ReleaseNode is for snapshot nodes")           \
    RULE(kClaimOfRealNode, "claim-of-real-node",                                                 \
         "a node of the Core's cannot be claimed, only a snapshot node")                         \
    RULE(kDeletedTwice, "node-deleted-twice",                                                    \
         "the node has been deleted in this undo group already")                                 \
    RULE(kNullOwner, "null-owner", "a node needs an owner")                                      \
    RULE(kOwnerNameTwice, "owner-name-twice",                                                    \
         "two owners of one plug-in name have given state: that of one of them is lost")         \
    RULE(kOwnerInUndo, "owner-in-undo-record",                                                   \
         "the Core leaves without FlushUndoBuffer, and undo records hold its deleted node")      \
    RULE(kDeletionNotHeard, "deletion-not-heard",                                                \
         "the user deletes nodes that have a listener, and their owner does not list extension " \
         "43: the listener is not told")                                                         \
    RULE(kDeletionOutsideGroup, "deletion-outside-group",                                        \
         "extension 43 is answered with Delete outside an undo group: the user's undo does not " \
         "bring the node back")                                                                  \
    RULE(kCancelInDeletion, "cancel-in-deletion",                                                \
         "while extension 43 is answered a cancel takes nothing back")                           \
    RULE(kStateEmpty, "state-suddenly-empty",                                                    \
         "no state is given, though there are nodes and there was state before: throw what "     \
         "cannot be given")                                                                      \
    RULE(kGroupNotBegun, "group-not-begun", "no undo group is open")                             \
    RULE(kGroupLeft, "group-left-open", "the Core leaves, and its undo group is still open")     \
    RULE(kRecordingNotBegun, "recording-not-begun", "no recording is open")                      \
    RULE(kRecordingLeft, "recording-left-open",                                                  \
         "the Core leaves, and its recording is still open")                                     \
    RULE(kFocusNotTaken, "focus-not-requested", "the keyboard was not asked for")                \
    RULE(kFocusLeft, "focus-not-restored",                                                       \
         "the Core leaves, and it has not given the keyboard back")                              \
    RULE(kSelectionLeft, "selection-left-open",                                                  \
         "the Core leaves, and its batch of selections is still open")                           \
    RULE(kOpenWhileUserWorks, "open-while-user-works",                                           \
         "an undo group or a recording of an earlier call is in the user's way")                 \
    RULE(kMeshOverRecording, "mesh-over-recording",                                              \
         "a recording ends while the mesh snapshot is out")                                      \
    RULE(kChunkOutsideGroup, "chunk-outside-group",                                              \
         "no undo group is open: the chunk was refused, and is gone")                            \
    RULE(kLogLeft, "log-not-taken-back", "the Core leaves without ClearLog")                     \
    RULE(kRegistryLeft, "registry-not-taken-back", "the Core leaves without ClearErrorCode")     \
    RULE(kMessageNodeLeft, "message-node-left",                                                  \
         "the Core leaves, and the adaptor still listens to its message node")                   \
    RULE(kChildBeforeParent, "child-before-parent",                                              \
         "the parent is written at the same time later, and takes the node along")               \
    RULE(kNotFinite, "number-not-finite", "a number of what is written is infinite or none")     \
    RULE(kSingular, "transform-singular", "the rows of the transform lie in one plane")          \
    RULE(kUnitFactor, "unit-factor",                                                             \
         "the rows are longer or shorter than those that were read by the host's unit")          \
    RULE(kFaceOutOfRange, "face-out-of-range",                                                   \
         "a face of the mesh names a vertex that there is not")                                  \
    RULE(kHalfFace, "half-a-face", "the indices of the faces are no whole triangles")            \
    RULE(kTimeNotFinite, "time-not-finite", "the time is infinite or no number")                 \
    RULE(kTimeGoesBack, "time-goes-back",                                                        \
         "in this recording the node has been written at a later time")                          \
    RULE(kTwoOnOneTick, "two-samples-on-one-tick",                                               \
         "the node has just been written at the same tick of the host: one sample is lost")      \
    RULE(kColour, "colour-out-of-range", "a channel is not from 0 to 1")                         \
    RULE(kOtherThread, "other-thread", "the call comes on another thread than `attach` did")     \
    RULE(kAfterDetach, "call-after-detach", "the Core has left")                                 \
    RULE(kExceptionOut, "exception-out", "an exception has left a call of the adaptor's")

enum class Rule : std::uint8_t {
#define WATCH_RULE(rule, name, text) rule,
    WATCH_RULES(WATCH_RULE)
#undef WATCH_RULE
};

}  // namespace recorder::watching
