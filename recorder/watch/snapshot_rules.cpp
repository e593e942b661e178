#include <cmath>
#include <cstdio>

#include "recorder/watch/books.h"

namespace recorder::watching {
namespace {

using enum Operation;

// Loans ----------------------------------------------------------------------------------------

// The helper's has no time.
void Acquire(Books& books, OpenCall& call, ValueReader& said) {
    const double seconds = said.Number();
    call.said[0] = std::bit_cast<std::uint64_t>(seconds);
    CheckTime(books, call.place, call.node->name, seconds);
}

void Acquired(Books& books, OpenCall& call, ValueReader& answered) {
    const ObjectId id = answered.Object();
    if (id == 0) return;
    SnapshotMemory& snapshot = books.snapshots[id];
    if (!snapshot.node) {
        snapshot.node = &NodeOf(books, call.object);
        snapshot.node->snapshots.push_back(id);
    }
    if (!snapshot.isOut && KindOf(id) == ObjectKind::kMeshSnapshot) ++books.meshesOut;
    snapshot.isOut = true;
    snapshot.seconds = std::bit_cast<double>(call.said[0]);
    snapshot.tick = TickOf(books, snapshot.seconds);
    snapshot.lent = call.place;
}

void TakeBack(Books& books, ObjectId id, SnapshotMemory& snapshot) {
    snapshot.isOut = false;
    if (KindOf(id) == ObjectKind::kMeshSnapshot) --books.meshesOut;
}

template <ObjectKind kKind>
void Release(Books& books, OpenCall& call, ValueReader& said) {
    const ObjectId id = said.Object();
    SnapshotMemory* const known = books.snapshots.Find(id);
    if (!known) return;
    SnapshotMemory& snapshot = *known;
    if (!snapshot.isOut)
        return books.found.Add(Rule::kReleasedTwice, call.place, snapshot.node->name);
    if (snapshot.node != call.node || KindOf(id) != kKind)
        books.found.Add(Rule::kReleasedElsewhere, call.place, snapshot.node->name);
    TakeBack(books, id, snapshot);
}

// Samples --------------------------------------------------------------------------------------

std::string Times(double now, double before) {
    std::array<char, 96> text{};
    std::snprintf(text.data(), text.size(), "at %.9g s behind %.9g s", now, before);
    return text.data();
}

bool IsInThisGo(const Books& books, const Track& track) {
    return track.recording == books.recording && track.go == books.go;
}

// Seconds, far below a tick: whoever means the same moment may come by another sum.
constexpr double kHair = 1e-5;

// The same moment once more, and not by who has read what stands there or mends what a parent has
// moved. Once that is as good as any correction; of moment after moment it is a loop gone wrong.
bool IsDoubledAgain(Track& track, std::int64_t tick) {
    const bool isAgain = track.isDoubled && track.doubledAt != tick;
    track.isDoubled = true;
    track.doubledAt = tick;
    return isAgain;
}

void NoteSample(Books& books, const OpenCall& call, Track& track, bool isMending = false) {
    const SnapshotMemory& now = *call.snapshot;
    const auto tell = [&](Rule rule) {
        books.found.Add(rule, call.place, call.node->name,
                        [&] { return Times(now.seconds, track.seconds); });
    };
    if (!IsInThisGo(books, track)) {
        track = {};
        track.firstTick = now.tick;
    } else if (now.tick < track.lastTick) {
        tell(Rule::kTimeGoesBack);
    } else if (now.tick == track.lastTick && now.lent.call != track.lentBy) {
        const bool isOther = std::abs(now.seconds - track.seconds) > kHair;
        const bool isMeant = track.isReadSince || isMending;
        if (isOther || (!isMeant && IsDoubledAgain(track, now.tick))) tell(Rule::kTwoOnOneTick);
    }
    track.recording = books.recording;
    track.go = books.go;
    track.lastTick = now.tick;
    track.seconds = now.seconds;
    track.lentBy = now.lent.call;
    track.isReadSince = false;
}

void TellOvertaking(Books& books, NodeMemory& node) {
    if (node.isOvertaken) books.found.Add(Rule::kChildBeforeParent, node.written, node.name);
    node.isOvertaken = false;
}

// Children that were put somewhere in the world at this tick, by the first or the last sample of
// theirs, go along with the parent. That is no harm if they are put there again.
void Overtake(Books& books, const NodeMemory& parent, std::int64_t tick) {
    const Track& track = parent.transform;
    if (IsInThisGo(books, track) && tick <= track.lastTick) return;
    for (NodeMemory* const child : parent.children) {
        const Track& written = child->transform;
        const bool isAtTick = tick == written.lastTick || tick == written.firstTick;
        const bool isBelow = child->hungAt == 0 || child->hungAt == books.kinship;
        if (!isBelow || !IsInThisGo(books, written) || !child->isInWorld || !isAtTick) continue;
        if (!child->isListed) books.overtaken.push_back(child);
        child->isListed = child->isOvertaken = true;
        child->overtakenAt = tick;
    }
}

template <bool kIsInWorld>
void SetTransform(Books& books, OpenCall& call, ValueReader& said) {
    NodeMemory& node = *call.node;
    const TVL::CMatrix4 transform = said.Matrix();
    if (!IsGoodTransform(books, call.place, node, transform)) return;
    if (kIsInWorld) CheckRows(books, call.place, node, transform);
    if (books.recordings.empty()) return;
    const std::int64_t tick = call.snapshot->tick;
    const bool isMending = node.isOvertaken && node.overtakenAt == tick;
    if (isMending) node.isOvertaken = false;
    TellOvertaking(books, node);
    Overtake(books, node, tick);
    NoteSample(books, call, node.transform, isMending);
    node.isInWorld = kIsInWorld;
    node.written = call.place;
}

template <bool kIsInWorld>
void TransformRead(Books& books, OpenCall& call, ValueReader& answered) {
    call.node->transform.isReadSince = true;
    if (kIsInWorld) NoteRows(books, *call.node, answered.Matrix());
}

template <Track NodeMemory::*kTrack>
void SetLens(Books& books, OpenCall& call, ValueReader& said) {
    CheckFinite(books, call.place, call.node->name, said.Number());
    if (!books.recordings.empty()) NoteSample(books, call, call.node->*kTrack);
}

template <Track NodeMemory::*kTrack>
void LensRead(Books&, OpenCall& call, ValueReader&) {
    (call.node->*kTrack).isReadSince = true;
}

// The rest -------------------------------------------------------------------------------------

void SetMesh(Books& books, OpenCall& call, ValueReader& said) {
    CheckMesh(books, call.place, call.node->name, said.Word());
}

void SetColor(Books& books, OpenCall& call, ValueReader& said) {
    for (int channel = 0; channel < 3; ++channel) {
        const double value = said.Number();
        if (value >= 0 && value <= 1) continue;
        return books.found.Add(Rule::kColour, call.place, call.node->name);
    }
}

void SetTime(Books& books, OpenCall& call, ValueReader& said) {
    CheckTime(books, call.place, {}, said.Number());
}

void SetRange(Books& books, OpenCall& call, ValueReader& said) {
    const auto [start, end] = said.Pair();
    CheckTime(books, call.place, {}, start + end);
}

void FrameRate(Books& books, OpenCall&, ValueReader& answered) {
    const double rate = answered.Number();
    if (rate >= 1 && rate <= 4800) books.frameRate = rate;
}

}  // namespace

std::span<const Handler> SnapshotHandlers() {
    static constexpr Handler kHandlers[] = {
        {AdaptorInterface_SetCurrentTime, SetTime},
        {AdaptorInterface_SetAnimationRange, SetRange},
        {AdaptorInterface_GetFrameRate, nullptr, FrameRate},
        {CoreNode_AcquireSnapshot, Acquire, Acquired},
        {CoreNode_AcquireHelperSnapshot, nullptr, Acquired},
        {CoreNode_AcquireMeshSnapshot, Acquire, Acquired},
        {CoreNode_AcquireLensSnapshot, Acquire, Acquired},
        {CoreNode_AcquireShapeSnapshot, Acquire, Acquired},
        {CoreNode_ReleaseHelperSnapshot, Release<ObjectKind::kHelperSnapshot>},
        {CoreNode_ReleaseMeshSnapshot, Release<ObjectKind::kMeshSnapshot>},
        {CoreNode_ReleaseLensSnapshot, Release<ObjectKind::kLensSnapshot>},
        {CoreNode_ReleaseShapeSnapshot, Release<ObjectKind::kShapeSnapshot>},
        {CoreNode_ReleaseSnapshot, Release<ObjectKind::kSnapshot>},
        {CSnapshot_SetLocalTransform, SetTransform<false>},
        {CSnapshot_GetLocalTransform, nullptr, TransformRead<false>},
        {CSnapshot_GetWorldTransform, nullptr, TransformRead<true>},
        {CSnapshot_SetWorldTransform, SetTransform<true>},
        {CSnapshot_Helper_SetMesh, SetMesh},
        {CSnapshot_Helper_SetColor, SetColor},
        {CSnapshot_Lens_SetFieldOfView, SetLens<&NodeMemory::field>},
        {CSnapshot_Lens_GetFieldOfView, nullptr, LensRead<&NodeMemory::field>},
        {CSnapshot_Lens_SetTargetDistance, SetLens<&NodeMemory::target>},
        {CSnapshot_Lens_GetTargetDistance, nullptr, LensRead<&NodeMemory::target>},
        {CSnapshot_Mesh_SetMesh, SetMesh},
    };
    return kHandlers;
}

// From the end of its node on it does nothing more.
void TellLeftSnapshots(Books& books, const NodeMemory& node) {
    for (const ObjectId id : node.snapshots) {
        SnapshotMemory& snapshot = books.snapshots[id];
        if (!snapshot.isOut) continue;
        books.found.Add(Rule::kSnapshotKept, snapshot.lent, node.name);
        TakeBack(books, id, snapshot);
    }
}

void TellOvertaken(Books& books) {
    for (NodeMemory* const node : books.overtaken) {
        TellOvertaking(books, *node);
        node->isListed = false;
    }
    books.overtaken.clear();
}

void TellMeshesOut(Books& books, const Place& place) {
    if (books.meshesOut == 0) return;
    for (const auto& [id, snapshot] : books.snapshots)
        if (snapshot.isOut && KindOf(id) == ObjectKind::kMeshSnapshot)
            books.found.Add(Rule::kMeshOverRecording, place, snapshot.node->name);
}

}  // namespace recorder::watching
