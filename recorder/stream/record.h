#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <type_traits>

#include "recorder/stream/operations.h"

// What crosses the boundary, as a row of records: the same bytes live, on a tape and from one. A
// record is a head and the values that its kind or its operation names. Everything is in whole
// words of 8 bytes, the lowest byte first, a number as the bits of a double:
//
//   b i w    a word (i with its sign)       d  a word
//   s        the count of bytes, then these, filled up with zeros to a whole word
//   p v m    2, 3 and 16 words, a matrix row by row
//   o        the object's id, 0 for none    O  a count, then ids
//   g        the mesh's id
//   x        the letter of what follows, o, t, or i for 64 bits, or 0 for nothing; then that
//   t        the count of bytes that follow, then element by element, each ahead of its children:
//            kind (i), name (s), count of attributes, these (s s), count of children
namespace recorder {

static_assert(std::endian::native == std::endian::little);

enum class RecordKind : std::uint8_t {
    kSession = 1,  // sisss: the moment in UTC, the interface's version, this side's platform, the
                   // Core's library, and who recorded it
    kCall,         // what the operation says
    kAnswer,       // what it answers
    kThrown,       // s: what came out of the call in place of an answer
    kMesh,         // a mesh that is new here: see PutMeshContent
    kObject,       // ossdb: what is known of an object; see ObjectFacts
    kNote,         // ss: a word of whoever drives the host, and what it is about; see notes.h
};

enum class ObjectKind : std::uint8_t {
    kNone,
    kAdaptor,
    kCore,
    kNode,
    kSnapshot,
    kHelperSnapshot,
    kLensSnapshot,
    kMeshSnapshot,
    kShapeSnapshot,
    kOwner,
    kListener,
    kChunk,
    kCoreMessageNode,     // the Core's
    kAdaptorMessageNode,  // the adaptor's
    kLog,
    kRegistry,
};

// Of one object, from its first appearance to its end; never given twice in a session. The kind
// stands in the highest byte.
using ObjectId = std::uint64_t;
constexpr ObjectId MakeObjectId(ObjectKind kind, std::uint64_t number) {
    return static_cast<std::uint64_t>(kind) << 56 | number;
}
constexpr ObjectKind KindOf(ObjectId id) {
    return static_cast<ObjectKind>(id >> 56);
}
constexpr bool IsSnapshot(ObjectKind kind) {
    return kind >= ObjectKind::kSnapshot && kind <= ObjectKind::kShapeSnapshot;
}
constexpr std::uint64_t NumberOf(ObjectId id) {
    return id & 0x00ff'ffff'ffff'ffff;
}

// Of a listener that there is not.
inline constexpr ObjectId kNoListener = MakeObjectId(ObjectKind::kListener, 0);

// A mesh is told by its content: 64 bits of a hash of that.
using MeshId = std::uint64_t;

struct RecordHead {
    std::uint32_t size = 0;          // bytes of the whole record, a multiple of 8
    std::uint32_t checksum = 0;      // of all that follows these 8 bytes
    std::uint64_t call = 0;          // an answer has its call's number; others count on, from 1
    ObjectId object = 0;             // on which the operation is called, or which is told of
    std::uint32_t milliseconds = 0;  // since the session began; an answer has 0
    RecordKind kind{};
    std::uint8_t thread = 0;   // 0 for the thread that attached, others from 1 on, 255 for the rest
    std::uint8_t nesting = 0;  // calls of this thread that are open around it, at most 255
    Operation operation{};     // of a call and what ends it
};
static_assert(sizeof(RecordHead) == 32 && std::is_trivially_copyable_v<RecordHead>);

// The last word of a head.
constexpr std::uint64_t WordOf(std::uint32_t milliseconds, RecordKind kind, std::uint8_t thread,
                               std::uint8_t nesting, Operation operation) {
    return milliseconds | static_cast<std::uint64_t>(kind) << 32 | std::uint64_t{thread} << 40 |
           std::uint64_t{nesting} << 48 | static_cast<std::uint64_t>(operation) << 56;
}

inline constexpr std::size_t kHeadWords = sizeof(RecordHead) / 8;
inline constexpr std::size_t kLargestRecord = std::size_t{1} << 31;  // bytes

// A record where it lies; whoever holds one holds its bytes.
struct Record {
    RecordHead head;
    std::span<const std::uint64_t> values;

    bool Is(RecordKind kind, Operation operation) const {
        return head.kind == kind && head.operation == operation;
    }
    bool IsEnd() const {  // of a call
        return head.kind == RecordKind::kAnswer || head.kind == RecordKind::kThrown;
    }
};

// What a session tells of an object beside the calls on it: when it first appears, as far as calls
// do not tell it, and again at the beginning of each segment of a tape.
struct ObjectFacts {
    ObjectId of = 0;              // a node's owner; a snapshot's node; a node's parent is not told;
                                  // the node that a listener, or none, has come to without a call
    std::string_view name{};      // a node's own; an owner's plug-in; a message node's
    std::string_view hostName{};  // a node's in the host, as it was when it was made or claimed
    double seconds = 0;           // of a snapshot that is out
    bool isSnapshot = false;      // of a node
};

}  // namespace recorder
