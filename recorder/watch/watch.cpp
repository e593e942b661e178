#include "recorder/watch/watch.h"

#include <algorithm>

#include "recorder/stream/notes.h"
#include "recorder/watch/books.h"
#include "tvl/ids.h"

namespace recorder {
namespace watching {
namespace {

using enum Operation;

// Where the calls of a class come from, and what they are on.
enum class Sort : std::uint8_t {
    kByAdaptor,
    kByCore,
    kOnNode,      // by the Core
    kOnSnapshot,  // the same
    kByEither,    // as the object says
};

Sort SortOf(std::string_view className) {
    if (className == "AdaptorInterface") return Sort::kByCore;
    if (className == "CNode" || className == "CoreNode") return Sort::kOnNode;
    if (className.starts_with("CSnapshot")) return Sort::kOnSnapshot;
    return className == "CExtendable" || className == "MessageNode" ? Sort::kByEither
                                                                    : Sort::kByAdaptor;
}

// What the watch does at an operation.
struct Work {
    Handle call = nullptr;
    Handle answer = nullptr;
    Sort sort{};
};
using WorkTable = std::array<Work, kOperations.size()>;

WorkTable MakeWork() {
    WorkTable table{};
    for (std::size_t index = 0; index < table.size(); ++index)
        table[index].sort = SortOf(kOperations[index].className);
    for (const auto& handlers :
         {NodeHandlers(), OwnerHandlers(), BracketHandlers(), SnapshotHandlers()})
        for (const Handler& handler : handlers) {
            Work& work = table[static_cast<std::size_t>(handler.operation)];
            work.call = handler.call;
            work.answer = handler.answer;
        }
    return table;
}

const WorkTable works = MakeWork();

const Work& WorkOf(Operation operation) {
    return works[static_cast<std::size_t>(operation)];
}

bool IsByCore(const OpenCall& call) {
    const ObjectKind kind = KindOf(call.object);
    const Sort sort = WorkOf(call.place.operation).sort;
    if (sort != Sort::kByEither) return sort != Sort::kByAdaptor;
    return kind == ObjectKind::kNode || kind == ObjectKind::kAdaptorMessageNode || IsSnapshot(kind);
}

std::string_view NameOf(Books& books, const OpenCall& call) {
    if (call.node) return call.node->name;
    const OwnerMemory* const owner = books.owners.Find(call.object);
    return owner ? std::string_view(owner->name) : std::string_view();
}

// Finds what the call is on. False: nobody meets it there.
bool FindObject(Books& books, OpenCall& call) {
    const ObjectKind kind = KindOf(call.object);
    const Sort sort = WorkOf(call.place.operation).sort;
    if (kind == ObjectKind::kNode) call.node = &NodeOf(books, call.object);
    if (!IsSnapshot(kind)) return sort != Sort::kOnSnapshot && (sort != Sort::kOnNode || call.node);
    call.snapshot = books.snapshots.Find(call.object);
    if (!call.snapshot || sort == Sort::kOnNode) return false;
    call.node = call.snapshot->node;
    return true;
}

// Whether the call is one that finds its object as it should. What is used of a node that has ended
// does nothing, which is allowed of its snapshots alone.
bool IsMet(Books& books, const OpenCall& call) {
    if (books.hasLeft) {
        books.found.Add(Rule::kAfterDetach, call.place, NameOf(books, call));
        return false;
    }
    if (call.thread != 0) books.found.Add(Rule::kOtherThread, call.place, NameOf(books, call));
    if (!call.node || call.place.operation == CNode_ReleaseNode) return true;
    if (!call.snapshot) return !TellIfEnded(books, call.place, call.object);
    if (call.node->life == Life::kEnded) return false;
    if (!call.snapshot->isOut) books.found.Add(Rule::kUseAfterRelease, call.place, call.node->name);
    return call.snapshot->isOut;
}

// A Core may refuse to start, and to give or to take state, by throwing.
bool MayThrow(const OpenCall& call) {
    switch (call.place.operation) {
        case Routine_attach:
        case CoreInterface_GetCoreState:
        case CoreInterface_SetCoreState:
            return true;
        case CExtendable_HandleExtension:
            return call.said[0] == TVL::kSceneBeingSaved;
        default:
            return false;
    }
}

void TakeThrown(Books& books, const OpenCall& call, ValueReader& words) {
    if (call.isByCore) return;
    if (!MayThrow(call))
        books.found.Add(Rule::kExceptionOut, call.place, NameOf(books, call),
                        [&] { return std::string(words.Text()); });
    PutBack(books, call);
}

void TakeEnd(Books& books, OpenCall& call, const Record& record) {
    ValueReader values(record);
    if (call.place.operation == CExtendable_HandleExtension && call.object == books.owner43)
        books.owner43 = 0;
    const Handle answer = WorkOf(call.place.operation).answer;
    if (record.head.kind == RecordKind::kThrown)
        TakeThrown(books, call, values);
    else if (answer && !call.isDropped && FindObject(books, call))
        answer(books, call, values);
    if (call.place.operation != Routine_detach) return;
    TellLeftOpen(books);
    TellLeftNodes(books);
    books.hasLeft = true;
}

}  // namespace

// What is known, and how far records are trusted.
struct Session {
    Books books;
    std::uint64_t lastNumber = 0;
    bool isBlind = true;  // until a session begins
    bool hasSeenAll = true;

    void Begin() {
        Books fresh;
        std::swap(fresh.found, books.found);
        books = std::move(fresh);
        lastNumber = 0;
        isBlind = false;
    }

    void GoBlind() {
        isBlind = true;
        hasSeenAll = false;
    }

    // What a tape tells once more has no number.
    bool IsNext(const RecordHead& head) {
        if (head.call > lastNumber + 1) return false;
        lastNumber = std::max(lastNumber, head.call);
        return true;
    }

    // Every call around it is known to be open, and no other.
    bool IsInPlace(const RecordHead& head) const {
        const auto around = std::ranges::count(books.calls, head.thread, &OpenCall::thread);
        return std::min<std::ptrdiff_t>(around, 255) == head.nesting;
    }

    // The calls of a deletion by the user follow one another, StopCore first.
    void BeginGo(const OpenCall& call) {
        if (books.calls.size() > 1 || call.isByCore) return;
        books.BeginGo();
        if (RowOf(call.place.operation).className != "CExtendable") books.hasStopEndedGroup = false;
    }

    void TakeCall(const Record& record) {
        const RecordHead& head = record.head;
        if (!IsInPlace(head)) return GoBlind();
        OpenCall& call = books.calls.emplace_back();
        call.place = {head.call, head.milliseconds, head.operation};
        call.object = head.object;
        call.thread = head.thread;
        call.groups = static_cast<std::uint32_t>(books.groups.size());
        call.recordings = static_cast<std::uint32_t>(books.recordings.size());
        call.focuses = static_cast<std::uint32_t>(books.focuses.size());
        call.isByCore = IsByCore(call);
        BeginGo(call);
        call.isDropped = !FindObject(books, call) || (call.isByCore && !IsMet(books, call));
        const Handle handle = WorkOf(head.operation).call;
        ValueReader values(record);
        if (handle && !call.isDropped) handle(books, call, values);
        call.node = nullptr;
        call.snapshot = nullptr;
    }

    // Where a call inside has no end, records are missing.
    void TakeEndOf(const Record& record) {
        std::vector<OpenCall>& calls = books.calls;
        auto place = calls.end();
        while (place != calls.begin()) {
            --place;
            if (place->place.call == record.head.call) {
                TakeEnd(books, *place, record);
                if (calls.size() == 1 && !place->isByCore) books.BeginGo();
                calls.erase(place);
                return;
            }
            if (place->thread == record.head.thread) break;
        }
        GoBlind();
    }

    void TakeObject(const Record& record) {
        ValueReader values(record);
        const ObjectFacts facts = values.Facts();
        const ObjectId id = record.head.object;
        if (KindOf(id) == ObjectKind::kNode) KnowNode(books, id, facts);
        if (KindOf(id) == ObjectKind::kOwner) books.owners[id].name = facts.name;
        if (KindOf(id) == ObjectKind::kListener && facts.of != 0)
            KnowListener(books, facts.of, id != kNoListener);
    }

    void Take(const Record& record) {
        switch (record.head.kind) {
            case RecordKind::kAnswer:
            case RecordKind::kThrown:
                return TakeEndOf(record);
            case RecordKind::kSession:
                if (record.head.call != 0) Begin();
                break;
            default:
                break;
        }
        if (isBlind) return;
        if (!IsNext(record.head)) return GoBlind();
        ValueReader values(record);
        if (record.head.kind == RecordKind::kCall) TakeCall(record);
        if (record.head.kind == RecordKind::kObject) TakeObject(record);
        if (record.head.kind == RecordKind::kMesh) TakeMesh(books, values);
        const auto [word, about] = NoteOf(record);
        if (word == note::kSettings) TakeSettings(books, std::string(about));
    }
};

}  // namespace watching

struct Watch::State : watching::Session {};

Watch::Watch() : state_(std::make_unique<State>()) {}
Watch::~Watch() = default;

void Watch::Take(const Record& record, std::span<const std::byte>) noexcept {
    const bool isBeginning = record.head.kind == RecordKind::kSession && record.head.call != 0;
    if (state_->isBlind && !isBeginning) return state_->GoBlind();
    try {
        state_->Take(record);
    } catch (...) {
        state_->GoBlind();
    }
}

const std::vector<Finding>& Watch::Findings() const {
    return state_->books.found.All();
}

bool Watch::HasSeenAll() const {
    return state_->hasSeenAll;
}

}  // namespace recorder
