#pragma once

// What the Core in this folder does wrong when the variable MISTAKE names it, and the rule of the
// watch that says so. Without the variable, or with it empty, it does all as it should.
namespace mistakes {

inline constexpr char kVariable[] = "MISTAKE";

struct Mistake {
    const char* name;
    const char* rule;             // empty: it looks wrong, and is allowed
    const char* check = "press";  // of check-core, the first that sees it
};

inline constexpr Mistake kMistakes[] = {
    {"uses a released snapshot", "use-after-release"},
    {"releases a snapshot twice", "released-twice"},
    {"releases a snapshot node twice", "released-twice"},
    {"releases to another node", "released-elsewhere"},
    {"keeps a snapshot", "snapshot-not-given-back"},
    {"keeps a snapshot node", "snapshot-node-not-given-back"},
    {"keeps what it has claimed from", "snapshot-node-not-given-back", "open"},
    {"uses a destroyed node", "node-after-end"},
    {"hangs a node below a destroyed one", "node-after-end"},
    {"leaves its nodes", "node-not-destroyed"},
    {"keeps its nodes over a reset", "node-kept-over-reset", "open"},
    {"releases a real node", "real-node-released"},
    {"claims a real node", "claim-of-real-node"},
    {"deletes twice", "node-deleted-twice"},
    {"makes a node of nobody", "null-owner"},
    {"claims for nobody", "null-owner"},
    {"has two owners of one name", "owner-name-twice", "detach-in-a-take"},
    {"leaves without a flush", "owner-in-undo-record"},
    {"does not list 43", "deletion-not-heard", "delete-in-a-take"},
    {"does not list 43, and listens late", "deletion-not-heard", "delete-in-a-take"},
    {"does not list 43, nor listens", "", "delete-in-a-take"},
    {"deletes outside a group at 43", "deletion-outside-group", "delete-in-a-take"},
    {"cancels at 43", "cancel-in-deletion", "delete-in-a-take"},
    {"forgets an owner's state", "state-suddenly-empty", "late-attach"},
    {"forgets its whole state", "state-suddenly-empty", "saved-again"},
    {"ends no group", "group-not-begun"},
    {"leaves with a group", "group-left-open", "loads"},
    {"forgets a group", "open-while-user-works"},
    {"records on after StopCore", "open-while-user-works", "delete-in-a-take"},
    {"ends no recording", "recording-not-begun"},
    {"leaves with a recording", "recording-left-open", "loads"},
    {"restores no focus", "focus-not-requested"},
    {"keeps the focus", "focus-not-restored"},
    {"keeps a batch of selections", "selection-left-open"},
    {"keeps a mesh over a recording", "mesh-over-recording"},
    {"adds a chunk outside a group", "chunk-outside-group"},
    {"leaves its log", "log-not-taken-back", "loads"},
    {"leaves its registry", "registry-not-taken-back", "loads"},
    {"leaves its button", "message-node-left", "loads"},
    {"writes children first", "child-before-parent"},
    {"writes child by child", "child-before-parent"},
    {"writes a transform that is no number", "number-not-finite"},
    {"writes a lens that is no number", "number-not-finite"},
    {"gives a mesh with a vertex that is no number", "number-not-finite"},
    {"writes a flat transform", "transform-singular"},
    {"forgets the unit", "unit-factor"},
    {"forgets the unit, and reads nothing", "unit-factor"},
    {"counts the unit twice", "unit-factor"},
    {"gives a face without a vertex", "face-out-of-range"},
    {"gives half a face", "half-a-face"},
    {"asks at no time", "time-not-finite"},
    {"goes to no time", "time-not-finite"},
    {"records backwards", "time-goes-back"},
    {"records faster than the host counts", "two-samples-on-one-tick"},
    {"records everything twice", "two-samples-on-one-tick"},
    {"colours from 0 to 255", "colour-out-of-range"},
    {"calls from a thread", "other-thread"},
    {"calls after detach", "call-after-detach", "loads"},
    {"throws out of ShowCore", "exception-out"},
    {"does what is allowed", "", "another-process"},
};

}  // namespace mistakes
