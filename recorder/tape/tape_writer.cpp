#include "recorder/tape/tape_writer.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <optional>

#include "recorder/stream/record_reader.h"
#include "recorder/tape/copier.h"
#include "recorder/tape/stock.h"

namespace recorder {
namespace {

// What is told again takes at most so much of a tape, but for the first time in a session.
constexpr std::uint64_t kShareToldAgain = 8;

constexpr std::size_t kFewestPlaces = 2 * kDesks;

std::atomic_ref<std::uint64_t> WordAt(std::byte* place) {
    return std::atomic_ref(*reinterpret_cast<std::uint64_t*>(place));
}

// Whole words, most often few of them.
void CopyWords(std::byte* to, const std::byte* from, std::size_t size) {
    constexpr std::size_t kFew = 256;
    if (size > kFew) {
        std::memcpy(to, from, size);
        return;
    }
    for (std::size_t at = 0; at < size; at += 8)
        std::memcpy(to + at, from + at, 8);
}

bool IsOfUndoGroup(Operation operation) {
    return operation == Operation::AdaptorInterface_BeginUndoGroup ||
           operation == Operation::AdaptorInterface_EndUndoGroup ||
           operation == Operation::AdaptorInterface_CancelUndoGroup;
}

// Whether nothing more is to be done when the record is on the tape.
bool IsPlain(const RecordHead& head) {
    return head.kind == RecordKind::kCall ||
           (head.kind == RecordKind::kAnswer && !IsOfUndoGroup(head.operation) &&
            head.operation > Operation::Routine_detach);
}

// Whether no Core is attached from here on.
bool HasLeft(const Record& record) {
    const bool isThrown = record.head.kind == RecordKind::kThrown;
    if (!isThrown && record.head.kind != RecordKind::kAnswer) return false;
    return record.head.operation == Operation::Routine_detach ||
           (record.head.operation == Operation::Routine_attach &&
            (isThrown || ValueReader(record).Object() == 0));
}

}  // namespace

struct TapeWriter::State {
    std::string path;
    std::unique_ptr<MappedFile> file;
    std::optional<Copier> copier;
    Stock stock;
    std::size_t mostSegments = 0;
    Stream* stream = nullptr;

    // The newest segment, and where its next record comes.
    std::span<std::byte> desks;     // the memory of the first places
    std::size_t place = 0;          // of the newest segment
    std::span<std::byte> segment;   // its memory
    SegmentHead head{.number = 0};  // 0 if there is none
    std::byte* at = nullptr;
    std::byte* end = nullptr;    // of the room for records
    std::uint64_t salt = 0;      // where a record's first word has the checksum
    bool isSynced = false;       // something of it was
    std::uint64_t position = 0;  // of its first record

    bool hasLeft = false;  // the Core: the module of this can be unloaded at any time
    int openGroups = 0;
    std::vector<std::uint64_t> sessionRecord;  // to be told again
    bool isTellingDue = false;
    std::uint64_t toldAt = 0;     // the position behind what was told again last
    std::uint64_t toldBytes = 0;  // how much that was, with the meshes since
    RecordWriter writer;

    bool isStopped = false;
    std::string whyStopped;

    std::size_t Room() const { return static_cast<std::size_t>(end - at); }
    std::size_t Used() const { return static_cast<std::size_t>(at - segment.data()); }
    std::uint64_t Position() const { return position + Used() - sizeof(SegmentHead); }

    std::string Open(std::uint64_t limit);
    void GoOn();
    void SitDownAt(std::size_t newPlace);
    std::string KeepOther(std::size_t other);
    void Stop(const std::string& why) noexcept;
    void Sync();
    void Store(std::span<const std::byte> record);
    bool KeepSegment();
    bool BeginSegment(std::uint64_t session);
    bool Put(std::span<const std::byte> record, std::uint64_t session);
    void PutPart(std::span<const std::byte> record, std::size_t done, std::size_t size);
    bool TakeBeyond(const Record& record, std::span<const std::byte> bytes,
                    const std::function<void(const TellObject&)>& tellAll);
    void TellAgain(const std::function<void(const TellObject&)>& tellAll);
    void BeginSession(std::span<const std::byte> record);
    void Follow(const Record& record, std::span<const std::byte> bytes);
};

// Goes on behind what the file holds already.
std::string TapeWriter::State::Open(std::uint64_t limit) {
    std::string whyNot = TakeStock(*file, stock);
    if (!whyNot.empty()) return whyNot;
    mostSegments = std::max(static_cast<std::size_t>(limit / stock.segmentBytes), kFewestPlaces);
    desks = file->Map(kDesks * static_cast<std::size_t>(stock.segmentBytes), whyNot);
    if (desks.empty()) return whyNot;
    copier.emplace(*file);
    head = stock.newest;
    const bool isThere = head.number != 0 && stock.place < kDesks;
    for (std::size_t other = 0; other < kDesks && whyNot.empty(); ++other)
        if (!isThere || other != stock.place) whyNot = KeepOther(other);
    if (!whyNot.empty()) return whyNot;
    SitDownAt(isThere ? stock.place : 0);
    position = head.position;
    if (isThere)
        GoOn();
    else if (head.number != 0)
        position += stock.used - sizeof(SegmentHead);
    return {};
}

// What a process left that ended while it was being copied.
std::string TapeWriter::State::KeepOther(std::size_t other) {
    if (stock.slots.NumberAt(other) == 0) return {};
    const std::size_t copy = stock.slots.PlaceOfCopy(other, mostSegments);
    SitDownAt(other);
    stock.slots.Copy(other, copy);
    return file->Write(copy * stock.segmentBytes, segment);
}

// Where nothing is written yet.
void TapeWriter::State::SitDownAt(std::size_t newPlace) {
    place = newPlace;
    const auto size = static_cast<std::size_t>(stock.segmentBytes);
    segment = desks.subspan(place * size, size);
    at = end = segment.data() + sizeof(SegmentHead);
}

// Behind the last good record of the newest segment.
void TapeWriter::State::GoOn() {
    salt = std::uint64_t{SaltOf(head.number)} << 32;
    at = segment.data() + stock.used;
    end = stock.isClosed ? at : segment.data() + segment.size();
    isSynced = true;
    std::ranges::fill(segment.subspan(stock.used), std::byte{0});
}

void TapeWriter::State::Stop(const std::string& why) noexcept {
    isStopped = true;
    end = at;
    try {
        whyStopped = path + ": the tape ends here: " + why;
    } catch (...) {
        whyStopped.clear();
    }
}

void TapeWriter::State::Sync() {
    std::string why = copier->Finish();
    if (why.empty()) why = file->Sync();
    isSynced = true;
    if (!why.empty()) Stop(why);
}

// At every moment there is a word of zeros, or the segment's end, behind the last record that is
// whole: the new one's first word comes last.
void TapeWriter::State::Store(std::span<const std::byte> record) {
    std::uint64_t first = 0;
    std::memcpy(&first, record.data(), sizeof first);
    CopyWords(at + 8, record.data() + 8, record.size() - 8);
    std::byte* const next = at + record.size();
    if (next != segment.data() + segment.size()) WordAt(next).store(0, std::memory_order_relaxed);
    WordAt(at).store(first ^ salt, std::memory_order_release);
    at = next;
}

// Has the segment copied to where it stays. What the disk has of it already must be there on the
// disk before another one takes its place, for which there is time until the next one is full.
bool TapeWriter::State::KeepSegment() {
    const std::string why = copier->Finish();
    if (!why.empty()) {
        Stop(why);
        return false;
    }
    const std::size_t copy = stock.slots.PlaceForCopy(mostSegments);
    stock.slots.Copy(place, copy);
    copier->Start(copy * stock.segmentBytes, segment.first(std::min(Used() + 8, segment.size())),
                  isSynced);
    if (hasLeft) copier->End();
    return true;
}

bool TapeWriter::State::BeginSegment(std::uint64_t session) {
    if (isStopped) return false;
    if (file->IsGone()) {
        Stop("the file was taken away");
        return false;
    }
    const bool isUsed = Used() > sizeof(SegmentHead);
    if (isUsed && !KeepSegment()) return false;
    position = Position();
    SitDownAt(isUsed ? (place + 1) % kDesks : place);
    head = Sealed({.number = head.number + 1,
                   .bytes = stock.segmentBytes,
                   .position = position,
                   .session = session});
    salt = std::uint64_t{SaltOf(head.number)} << 32;
    end = segment.data() + segment.size();
    isSynced = false;
    WordAt(segment.data()).store(0, std::memory_order_release);
    std::memcpy(segment.data() + 8, &head.version, sizeof head - 8);
    WordAt(at).store(0, std::memory_order_relaxed);
    WordAt(segment.data()).store(head.magic, std::memory_order_release);
    stock.slots.Put(place, head.number, session);
    isTellingDue = position - toldAt >= kShareToldAgain * toldBytes;
    if (isTellingDue && stream != nullptr) stream->ForgetMeshes();
    return true;
}

void TapeWriter::State::PutPart(std::span<const std::byte> record, std::size_t done,
                                std::size_t size) {
    std::vector<std::uint64_t> part(kHeadWords + size / 8);
    const RecordHead partHead{.call = record.size(), .object = done, .kind = kPart};
    std::memcpy(part.data(), &partHead, sizeof partHead);
    std::memcpy(&part[kHeadWords], record.data() + done, size);
    Seal(part);
    Store(std::as_bytes(std::span(part)));
}

bool TapeWriter::State::Put(std::span<const std::byte> record, std::uint64_t session) {
    for (std::size_t done = 0; done < record.size();) {
        if (Room() < kLeastPart && !BeginSegment(session)) return false;
        if (done == 0 && record.size() <= Room()) {
            Store(record);
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
    sessionRecord[1] = 0;  // its number
    Seal(sessionRecord);
    hasLeft = false;
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
    } else if (record.head.kind == RecordKind::kMesh) {
        toldBytes += bytes.size();
    } else if (IsSave(record)) {
        stock.slots.Saved(stock.session, head.number);
        end = at;
        Sync();
    } else if (HasLeft(record)) {
        hasLeft = true;
        Sync();
        copier->End();
    } else if (record.head.kind != RecordKind::kAnswer) {
        return;
    } else if (operation == Operation::AdaptorInterface_BeginUndoGroup) {
        ++openGroups;
    } else if (IsOfUndoGroup(operation)) {
        if (openGroups > 0 && --openGroups == 0) Sync();
    }
}

std::unique_ptr<TapeWriter> TapeWriter::Open(const TapeSettings& settings, std::string& whyNot) {
    auto state = std::make_unique<State>();
    state->path = settings.path;
    state->file = MappedFile::Open(settings.path, whyNot);
    if (state->file) whyNot = state->Open(std::max(settings.limit, kLeastTapeLimit));
    if (!whyNot.empty()) {
        whyNot = settings.path + ": " + whyNot;
        return nullptr;
    }
    return std::unique_ptr<TapeWriter>(new TapeWriter(std::move(state)));
}

TapeWriter::TapeWriter(std::unique_ptr<State> state) : state_(std::move(state)) {}

// Of a tape of one segment what follows that is given back. A child that was doubled off has
// neither the thread nor a say in the file.
TapeWriter::~TapeWriter() {
    State& state = *state_;
    if (!state.file->IsOfThisProcess()) {
        static_cast<void>(state_.release());
        return;
    }
    state.copier.reset();
    state.file->Sync();
    if (state.place == 0 && state.stock.slots.Count() == kDesks &&
        state.stock.slots.NumberAt(1) == 0)
        state.file->Shrink(state.Used());
}

void TapeWriter::Join(Stream& stream) noexcept {
    state_->stream = &stream;
}

void TapeWriter::Take(const Record& record, std::span<const std::byte> bytes) noexcept try {
    State& state = *state_;
    if (!state.file->IsOfThisProcess()) return;
    if (bytes.size() <= state.Room())
        state.Store(bytes);
    else if (!state.TakeBeyond(record, bytes, onNewSegment))
        return;
    if (!IsPlain(record.head)) state.Follow(record, bytes);
} catch (...) {
    state_->Stop("there is not enough memory");
}

std::string TapeWriter::WhyStopped() const {
    const State& state = *state_;
    return state.isStopped && state.whyStopped.empty() ? "the tape has ended" : state.whyStopped;
}

}  // namespace recorder
