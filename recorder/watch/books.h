#pragma once

#include <array>
#include <string>
#include <unordered_set>
#include <vector>

#include "recorder/stream/record_reader.h"
#include "recorder/watch/findings.h"
#include "recorder/watch/known.h"

// What the watch knows of a session: of each object as much as rules ask for, and no more.
namespace recorder::watching {

enum class Life : std::uint8_t {
    kThere,
    kInRecord,  // deleted in an undo group, or its creation undone: it can still be used
    kUnsure,    // what became of it is not told; no rule looks at it
    kEnded,
};

// What was written of one kind to a node in one recording, and one go (see Books).
struct Track {
    std::uint32_t recording = 0;  // its number; 0 for none
    std::uint64_t go = 0;
    std::int64_t firstTick = 0;
    std::int64_t lastTick = 0;
    std::int64_t doubledAt = 0;  // the tick of the last one that was written blindly once more
    bool isDoubled = false;      // there is one
    double seconds = 0;          // of the last one
    std::uint64_t lentBy = 0;    // the call that lent the snapshot of the last one
    bool isReadSince = false;    // the node, by any snapshot
};

struct NodeMemory {
    ObjectId id = 0;
    std::string name;
    Life life = Life::kThere;
    bool isSnapshot = false;
    bool isCounted = false;       // among its owner's
    bool hasListener = false;     // as it was told last
    bool wasDeaf = false;         // it has had none for a while, in which it may have gone
    bool isRemovalTold = false;   // its listener heard of the removal that it is in
    Place born;                   // the call that gave it
    ObjectId owner = 0;           // of a snapshot node, that of the real one
    ObjectId source = 0;          // of a snapshot node, the node that it was reached from, if any
    std::uint32_t nest = 0;       // the last undo group that has it in a record, by its number
    std::uint32_t deletedIn = 0;  // the same of the last one that it was deleted in
    std::uint32_t lent = 0;       // snapshots that are out
    std::vector<ObjectId> snapshots;  // all that it has ever lent

    NodeMemory* parent = nullptr;  // a real one, if it is known
    std::uint64_t hungAt = 0;      // Books::kinship at which that was so; 0 for its birth
    std::vector<NodeMemory*> children;

    // The squared lengths of the three rows of its world transform, multiplied: 0 until it is read.
    double rows = 0;
    Track transform;
    Track field;               // of view
    Track target;              // the distance to it
    bool isInWorld = false;    // how the transform was written the last time
    Place written;             // the last time
    bool isOvertaken = false;  // the parent was written at the same tick after it
    bool isListed = false;     // in Books::overtaken
    std::int64_t overtakenAt = 0;
};

struct SnapshotMemory {
    NodeMemory* node = nullptr;
    bool isOut = false;
    double seconds = 0;
    std::int64_t tick = 0;
    Place lent;  // the last time
};

struct OwnerMemory {
    std::string name;
    std::size_t nodes = 0;  // real ones that are there
    bool hasGivenState = false;
};

// A call that has not ended.
struct OpenCall {
    Place place;
    ObjectId object = 0;
    std::uint8_t thread = 0;
    bool isByCore = false;
    bool isDropped = false;      // nobody has met it: no rule looks at its answer
    NodeMemory* node = nullptr;  // that it is on, or whose snapshot; while the call is taken
    SnapshotMemory* snapshot = nullptr;   // the same
    std::array<std::uint64_t, 3> said{};  // what of its values the answer's rules ask for
    std::uint32_t groups = 0;             // that were open when it came, and so on
    std::uint32_t recordings = 0;
    std::uint32_t focuses = 0;
};

// Something that was begun and is to be ended.
struct Open {
    Place place;
    std::uint64_t go = 0;
    Operation road{};     // the outermost call that it was begun in
    std::string name;     // a group's
    bool isTold = false;  // that it is in the user's way
};

// A message node of the Core's, which the adaptor was given.
struct Button {
    ObjectId id = 0;
    Place given;
    bool isHeard = false;
};

struct Books {
    FindingList found;

    Known<NodeMemory> nodes;
    Known<SnapshotMemory> snapshots;
    Known<OwnerMemory> owners;
    std::vector<ObjectId> ended;  // nodes, of which the oldest are forgotten
    std::size_t oldestEnded = 0;

    std::vector<OpenCall> calls;  // innermost last

    // The number of the go that is on: all within one call that the adaptor makes while no other is
    // open, or all that the Core does by itself between two of these. In between the user may do
    // anything, and there time is the user's.
    std::uint64_t go = 1;

    // Counts whatever can have hung nodes elsewhere: undo in any form, a merge, and each go, ahead
    // of which a person may undo.
    std::uint64_t kinship = 1;

    void BeginGo() {
        ++go;
        ++kinship;
    }

    std::vector<Open> groups;  // innermost last
    std::vector<Open> recordings;
    std::vector<Open> focuses;
    std::vector<Open> selections;  // at most one
    std::uint32_t nest = 1;        // the number of the outermost group that is open, or comes next
    bool isNestBroken = false;     // it is cancelled: what is in its records is not told
    std::uint32_t recording = 0;   // the number of the last one that was begun
    std::vector<NodeMemory*> overtaken;  // in the recording that is open
    std::size_t meshesOut = 0;

    std::vector<Button> buttons;
    Place logPlaced;  // of call 0 if none is
    Place registryPlaced;
    ObjectId owner43 = 0;  // that is just being told of a deletion
    std::uint64_t call43 = 0;
    bool hasStopEndedGroup = false;  // before that: the user's deletion has no step of its own
    bool hasGivenCoreState = false;
    bool hasLeft = false;
    double frameRate = 30;
    double rows = 0;  // as in a node, of the one that was read last; until then by the host's unit

    std::unordered_set<MeshId> meshesOutOfRange;
    std::unordered_set<MeshId> meshesOfHalfFaces;
    std::unordered_set<MeshId> meshesNotFinite;
};

// A handler of an operation: for its call, which reads the values that are said, and for its
// answer, which reads what is answered.
using Handle = void (*)(Books&, OpenCall&, ValueReader&);
struct Handler {
    Operation operation;
    Handle call = nullptr;
    Handle answer = nullptr;
};
std::span<const Handler> NodeHandlers();
std::span<const Handler> OwnerHandlers();
std::span<const Handler> BracketHandlers();
std::span<const Handler> SnapshotHandlers();

// Entries of a list of ids, or of indices; none where the list makes no sense.
inline std::span<const std::uint64_t> ListOf(ValueReader& values) {
    const auto list = values.Skip('O');
    return list.empty() ? list : list.subspan(1);
}

// Of the lives of nodes (node_lives.cpp). A node that nothing was told of yet is there.
NodeMemory& NodeOf(Books& books, ObjectId id);
NodeMemory* FindNode(Books& books, ObjectId id);  // null for one that is not known
void KnowNode(Books& books, ObjectId id, const ObjectFacts& facts);
void KnowListener(Books& books, ObjectId node, bool isThere);
void BearReal(Books& books, const Place& place, ObjectId id, ObjectId owner);
void BearLent(Books& books, const Place& place, ObjectId id, ObjectId source);
void Bear(Books& books, NodeMemory& node, const Place& place, ObjectId owner, bool isSnapshot);
void HangBelow(NodeMemory& node, NodeMemory* parent, std::uint64_t kinship = 0);
void SetLife(Books& books, NodeMemory& node, Life life);
void End(Books& books, NodeMemory& node);
void ForsakeNest(Books& books);  // what is in its records is not told any more
void TellLeftNodes(Books& books);
void TellNodesKeptOverReset(Books& books);

// Tells of one that has ended, and is used all the same.
bool TellIfEnded(Books& books, const Place& place, ObjectId id);

// Of snapshots (snapshot_rules.cpp).
void TellLeftSnapshots(Books& books, const NodeMemory& node);
void TellOvertaken(Books& books);
void TellMeshesOut(Books& books, const Place& place);

// Of what is written (number_rules.cpp).
void TakeMesh(Books& books, ValueReader& content);
void CheckMesh(Books& books, const Place& place, std::string_view node, MeshId mesh);
void CheckTime(Books& books, const Place& place, std::string_view node, double seconds);
void CheckFinite(Books& books, const Place& place, std::string_view node, double number);
std::int64_t TickOf(const Books& books, double seconds);

// If it is not, there is nothing more to be said of it.
bool IsGoodTransform(Books& books, const Place& place, const NodeMemory& node,
                     const TVL::CMatrix4& transform);
void CheckRows(Books& books, const Place& place, NodeMemory& node, const TVL::CMatrix4& world);
void NoteRows(Books& books, NodeMemory& node, const TVL::CMatrix4& world);
void TakeSettings(Books& books, const std::string& about);  // of the note on the host's

// Of brackets (bracket_rules.cpp).
void TellOpenInTheWay(Books& books, const Place& place);
void TellLeftOpen(Books& books);
void PutBack(Books& books, const OpenCall& thrownOutOf);

}  // namespace recorder::watching
