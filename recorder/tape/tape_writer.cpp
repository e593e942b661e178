#include "recorder/tape/tape_writer.h"

#include <algorithm>
#include <atomic>
#include <cstring>

#include "recorder/stream/record_reader.h"
#include "recorder/tape/stock.h"

namespace recorder {
namespace {

// What is told again takes at most so much of a tape, but for the first time in a session.
constexpr std::uint64_t kShareToldAgain = 8;

// The first word comes behind all others, so that whoever finds it finds the record whole.
void Store(std::byte* place, std::span<const std::byte> record) {
    std::uint64_t first = 0;
    std::memcpy(&first, record.data(), sizeof first);
    std::memcpy(place + sizeof first, record.data() + sizeof first, record.size() - sizeof first);
    std::atomic_ref(*reinterpret_cast<std::uint64_t*>(place))
        .store(first, std::memory_order_release);
}

bool IsOfUndoGroup(Operation operation) {
    return operation == Operation::AdaptorInterface_BeginUndoGroup ||
           operation == Operation::AdaptorInterface_EndUndoGroup ||
           operation == Operation::AdaptorInterface_CancelUndoGroup;
}

}  // namespace

struct TapeWriter::State {
    std::string path;
    std::unique_ptr<MappedFile> file;
    Stock stock;
    std::size_t mostSegments = 0;
    Stream* stream = nullptr;

    // The segment that is written to, and where its next record comes.
    SegmentHead head{.number = 0};
    std::size_t place = 0;
    std::span<std::byte> segment;
    std::byte* at = nullptr;
    std::byte* end = nullptr;  // of the room for records

    int openGroups = 0;
    std::vector<std::uint64_t> sessionRecord;  // to be told again
    bool isTellingDue = false;
    std::uint64_t toldAt = 0;     // the position behind what was told again last
    std::uint64_t toldBytes = 0;  // how much that was
    RecordWriter writer;

    bool isStopped = false;
    std::string whyStopped;

    std::uint64_t Room() const { return static_cast<std::uint64_t>(end - at); }
    std::uint64_t Used() const { return static_cast<std::uint64_t>(at - segment.data()); }
    std::uint64_t Position() const {
        return segment.empty() ? 0 : head.position + Used() - sizeof(SegmentHead);
    }

    void Stop(const std::string& why) noexcept;
    bool Map(std::size_t newPlace, std::uint64_t used);
    bool BeginSegment(std::uint64_t session);
    bool Put(std::span<const std::byte> record, std::uint64_t session);
    void PutPart(std::span<const std::byte> record, std::size_t done, std::size_t size);
    bool TakeBeyond(const Record& record, std::span<const std::byte> bytes,
                    const std::function<void(const TellObject&)>& tellAll);
    void TellAgain(const std::function<void(const TellObject&)>& tellAll);
    void BeginSession(std::span<const std::byte> record);
    void Follow(const Record& record, std::span<const std::byte> bytes);
    void Sync();
};

void TapeWriter::State::Stop(const std::string& why) noexcept {
    isStopped = true;
    end = at;
    try {
        whyStopped = path + ": the tape ends here: " + why;
    } catch (...) {
        whyStopped.clear();
    }
}

// Of a segment that was begun already what is used stays, and nothing else.
bool TapeWriter::State::Map(std::size_t newPlace, std::uint64_t used) {
    at = end = nullptr;
    std::string whyNot;
    segment = file->Map(newPlace * stock.segmentBytes, stock.segmentBytes, whyNot);
    if (segment.empty()) {
        Stop(whyNot);
        return false;
    }
    place = newPlace;
    at = segment.data() + used;
    end = segment.data() + segment.size();
    return true;
}

// What lay there is wiped out on the disk, too, before anything of the new segment can come there:
// no mixture of both is ever read.
bool TapeWriter::State::BeginSegment(std::uint64_t session) {
    if (isStopped) return false;
    if (file->IsGone()) {
        Stop("the file was taken away");
        return false;
    }
    const std::uint64_t position = Position();
    const std::size_t next = stock.slots.Next(mostSegments);
    const bool isUsedAnew = next < stock.slots.Count();
    if (!Map(next, sizeof(SegmentHead))) return false;
    if (isUsedAnew) {
        std::memset(segment.data(), 0, segment.size());
        Sync();
        if (isStopped) return false;
    }
    head = Sealed({.number = head.number + 1,
                   .bytes = stock.segmentBytes,
                   .position = position,
                   .session = session});
    Store(segment.data(), std::as_bytes(std::span(&head, 1)));
    stock.slots.Put(place, head.number, session);
    isTellingDue = position - toldAt >= kShareToldAgain * toldBytes;
    if (stream != nullptr) stream->ForgetMeshes();
    return true;
}

void TapeWriter::State::PutPart(std::span<const std::byte> record, std::size_t done,
                                std::size_t size) {
    std::vector<std::uint64_t> part(kHeadWords + size / 8);
    const RecordHead partHead{.call = record.size(), .object = done, .kind = kPart};
    std::memcpy(part.data(), &partHead, sizeof partHead);
    std::memcpy(&part[kHeadWords], record.data() + done, size);
    Seal(part);
    Store(at, std::as_bytes(std::span(part)));
    at += part.size() * 8;
}

bool TapeWriter::State::Put(std::span<const std::byte> record, std::uint64_t session) {
    for (std::size_t done = 0; done < record.size();) {
        if (Room() < kLeastPart && !BeginSegment(session)) return false;
        if (done == 0 && record.size() <= Room()) {
            Store(at, record);
            at += record.size();
            return true;
        }
        const std::size_t size = std::min(record.size() - done, Room() - sizeof(RecordHead));
        PutPart(record, done, size);
        done += size;
    }
    return true;
}

// Takes a record that the segment has no room for. Where it begins a segment, what is known of
// objects comes ahead of it, else behind.
bool TapeWriter::State::TakeBeyond(const Record& record, std::span<const std::byte> bytes,
                                   const std::function<void(const TellObject&)>& tellAll) {
    if (isStopped) return false;
    if (bytes.size() > (mostSegments / 2) * stock.segmentBytes) {
        Stop("a record of " + std::to_string(bytes.size()) + " bytes is too large for its limit");
        return false;
    }
    const bool isSession = record.head.kind == RecordKind::kSession;
    const std::uint64_t session = stock.session + (isSession ? 1 : 0);
    if ((isSession || Room() < kLeastPart) && !BeginSegment(session)) return false;
    if (isSession) return Put(bytes, session);
    TellAgain(tellAll);
    if (!Put(bytes, session)) return false;
    TellAgain(tellAll);
    return !isStopped;
}

void TapeWriter::State::TellAgain(const std::function<void(const TellObject&)>& tellAll) {
    if (!isTellingDue) return;
    isTellingDue = false;
    const std::uint64_t from = Position();
    if (!sessionRecord.empty()) Put(std::as_bytes(std::span(sessionRecord)), stock.session);
    const auto tell = [this](ObjectId object, const ObjectFacts& facts) {
        writer.Begin({.object = object, .kind = RecordKind::kObject});
        writer.Put(facts);
        writer.End();
        Put(writer.Bytes(), stock.session);
    };
    if (tellAll) tellAll(tell);
    isTellingDue = false;
    toldAt = Position();
    toldBytes = toldAt - from;
}

void TapeWriter::State::BeginSession(std::span<const std::byte> record) {
    ++stock.session;
    stock.slots.SessionBegan(place, stock.session);
    sessionRecord.resize(record.size() / 8);
    std::memcpy(sessionRecord.data(), record.data(), record.size());
    RecordHead again;
    std::memcpy(static_cast<void*>(&again), sessionRecord.data(), sizeof again);
    again.call = 0;
    std::memcpy(sessionRecord.data(), &again, sizeof again);
    Seal(sessionRecord);
    openGroups = 0;
    isTellingDue = false;
    toldAt = Position();
    toldBytes = 0;
}

// What a record that is on the tape now asks of it.
void TapeWriter::State::Follow(const Record& record, std::span<const std::byte> bytes) {
    const Operation operation = record.head.operation;
    if (record.head.kind == RecordKind::kSession) {
        BeginSession(bytes);
    } else if (IsSave(record)) {
        stock.slots.Saved(stock.session, head.number);
        end = at;
        Sync();
    } else if (record.head.kind != RecordKind::kAnswer) {
        return;
    } else if (operation == Operation::AdaptorInterface_BeginUndoGroup) {
        ++openGroups;
    } else if (IsOfUndoGroup(operation)) {
        openGroups = std::max(openGroups - 1, 0);
        if (openGroups == 0) Sync();
    } else if (operation == Operation::Routine_detach) {
        Sync();
    }
}

void TapeWriter::State::Sync() {
    const std::string why = file->Sync();
    if (!why.empty()) Stop(why);
}

std::unique_ptr<TapeWriter> TapeWriter::Open(const TapeSettings& settings, std::string& whyNot) {
    auto state = std::make_unique<State>();
    state->path = settings.path;
    state->file = MappedFile::Open(settings.path, whyNot);
    if (state->file) whyNot = TakeStock(*state->file, state->stock);
    if (!whyNot.empty()) {
        whyNot = settings.path + ": " + whyNot;
        return nullptr;
    }
    Stock& stock = state->stock;
    state->mostSegments = std::max(settings.limit, kLeastTapeLimit) / stock.segmentBytes;
    state->head = stock.newest;
    if (stock.newest.number != 0) {
        if (!state->Map(stock.place, stock.used)) {
            whyNot = state->whyStopped;
            return nullptr;
        }
        std::ranges::fill(state->segment.subspan(stock.used), std::byte{0});
        if (stock.isClosed) state->end = state->at;
    }
    return std::unique_ptr<TapeWriter>(new TapeWriter(std::move(state)));
}

TapeWriter::TapeWriter(std::unique_ptr<State> state) : state_(std::move(state)) {}

// A place behind the last segment can be there where the disk was full.
TapeWriter::~TapeWriter() {
    State& state = *state_;
    const bool isLast = !state.segment.empty() && state.place + 1 == state.stock.slots.Count();
    const std::uint64_t whole = state.stock.slots.Count() * state.stock.segmentBytes;
    const std::uint64_t spare = isLast ? state.segment.size() - state.Used() : 0;
    state.file->Sync();
    state.file->Shrink(whole - spare);
}

void TapeWriter::Join(Stream& stream) noexcept {
    state_->stream = &stream;
}

void TapeWriter::Take(const Record& record, std::span<const std::byte> bytes) noexcept try {
    State& state = *state_;
    if (bytes.size() <= state.Room()) {
        Store(state.at, bytes);
        state.at += bytes.size();
    } else if (!state.TakeBeyond(record, bytes, onNewSegment)) {
        return;
    }
    const bool isPlain =
        record.head.kind == RecordKind::kCall ||
        (record.head.kind == RecordKind::kAnswer && !IsOfUndoGroup(record.head.operation) &&
         record.head.operation != Operation::Routine_detach);
    if (!isPlain) state.Follow(record, bytes);
} catch (...) {
    state_->Stop("there is not enough memory");
}

std::string TapeWriter::WhyStopped() const {
    const State& state = *state_;
    return state.isStopped && state.whyStopped.empty() ? "the tape has ended" : state.whyStopped;
}

}  // namespace recorder
