#include "recorder/tape/read_tape.h"

#include <deque>
#include <stdexcept>

#include "recorder/tape/tape_file.h"

namespace recorder {
namespace {

using Words = std::vector<std::uint64_t>;

// What records lie in: the file's words, and those of records that were put together.
struct Memory {
    Words file;
    std::deque<Words> joined;
};

// Puts records into sessions, one piece after another.
class Sessions {
  public:
    Sessions(const TapeFile& file, TapeContents& tape, Memory& memory)
        : file_(file), tape_(tape), memory_(memory) {}

    // `next` is the segment behind it on the tape, null behind the last one.
    void Take(const Segment& segment, const Segment* next) {
        constexpr std::size_t kBetweenTold = 4096;  // pieces
        std::size_t pieces = 0;
        Enter(segment.head);
        for (const auto& [at, record] : segment.contents.pieces) {
            offset_ = segment.offset + at * 8;
            if (pieces++ % kBetweenTold == 0) file_.TellDone(2, before_ + at * 8);
            if (record)
                TakePiece(*record);
            else
                TellDamage("a record is damaged");
        }
        const std::uint64_t end = segment.contents.end * 8;
        const std::uint64_t position = segment.head.position + end - sizeof(SegmentHead);
        next_ = segment.head.number + 1;
        before_ += segment.head.bytes;
        if (next == nullptr || next->head.number != next_ || next->head.position <= position)
            return;
        offset_ = segment.offset + end;
        TellDamage("the rest of a segment is damaged");
        next_ = 0;
    }

  private:
    // Where the segment before is missing or damaged, what is told again is news.
    void Enter(const SegmentHead& head) {
        isNews_ = head.number != next_;
        if (!isNews_) return;
        part_.clear();
        if (tape_.sessions.empty() || session_ != head.session) tape_.sessions.emplace_back();
        session_ = head.session;
        Session().isWhole = false;
    }

    TapeSession& Session() { return tape_.sessions.back(); }

    void TellDamage(const std::string& what) {
        tape_.damages.push_back(AtByte(offset_, what));
        Session().isWhole = false;
    }

    void TakePiece(const Record& record) {
        if (record.head.kind == kPart)
            TakePart(record);
        else if (!AreValuesGood(record))
            TellDamage("a record makes no sense");
        else if (!IsToldAgain(record.head))
            TakeRecord(record);
        else if (isNews_)
            TakeToldAgain(record);
    }

    // Where those before it were dropped or damaged, a part is of no use.
    void TakePart(const Record& part) {
        const std::uint64_t whole = part.head.call;
        if (part.head.object != part_.size() * 8) {
            Session().isWhole = false;
            return;
        }
        part_.insert(part_.end(), part.values.begin(), part.values.end());
        if (part_.size() * 8 < whole) return;
        const Words& words = memory_.joined.emplace_back(std::move(part_));
        part_.clear();
        const auto record = ReadRecord(words);
        if (record && record->head.size == whole && AreValuesGood(*record))
            IsToldAgain(record->head) ? TakeToldAgain(*record) : TakeRecord(*record);
        else
            TellDamage("a record makes no sense");
    }

    // A record that was begun stays a part where its process has ended.
    void TakeRecord(const Record& record) {
        const RecordKind kind = record.head.kind;
        if (kind == RecordKind::kSession) {
            BeginSession();
        } else if (!part_.empty()) {
            TellDamage("a record before this one has no end");
        }
        part_.clear();
        TapeSession& session = Session();
        session.records.push_back(record);
        if (kind == RecordKind::kMesh)
            session.meshes.try_emplace(ValueReader(record).Word(), record);
        const bool isEnd = kind == RecordKind::kAnswer || kind == RecordKind::kThrown;
        session.isClosed |= isEnd && record.head.operation == Operation::Routine_detach;
    }

    // A segment behind one that is missing can begin with it.
    void BeginSession() {
        if (!Session().records.empty()) {
            tape_.sessions.emplace_back();
            ++session_;
        }
        Session().isWhole = true;
    }

    void TakeToldAgain(const Record& record) {
        std::vector<Record>& records = Session().records;
        const bool isSession = record.head.kind == RecordKind::kSession;
        if (!isSession)
            records.push_back(record);
        else if (records.empty() || records.front().head.kind != RecordKind::kSession)
            records.insert(records.begin(), record);
    }

    const TapeFile& file_;
    TapeContents& tape_;
    Memory& memory_;
    std::uint64_t before_ = 0;   // bytes of the segments that are done
    std::uint64_t offset_ = 0;   // of what is being read, in the file
    std::uint64_t next_ = 0;     // number of the segment that goes on where the last one ended
    std::uint64_t session_ = 0;  // number of the last one on the tape
    bool isNews_ = false;
    Words part_;  // of a record, up to where it was read
};

TapeContents Read(TapeFile file, MayBeBlank blank) {
    const auto memory = std::make_shared<Memory>();
    memory->file = std::move(file.words);
    TapeContents tape;
    tape.path = file.name;
    tape.bytes = file.bytes;
    tape.damages = std::move(file.damages);
    tape.memory = memory;
    Sessions built(file, tape, *memory);
    const std::vector<Segment>& list = file.segments;
    for (std::size_t i = 0; i < list.size(); ++i)
        built.Take(list[i], i + 1 < list.size() ? &list[i + 1] : nullptr);
    std::erase_if(tape.sessions,
                  [](const TapeSession& session) { return session.records.empty(); });
    if (tape.sessions.empty() && blank == MayBeBlank::kNo)
        throw std::runtime_error(tape.path + ": there is nothing on it");
    return tape;
}

}  // namespace

TapeContents ReadTape(const std::string& path, MayBeBlank blank, TapeProgress progress) {
    return Read(LoadTape(path, std::move(progress)), blank);
}

TapeContents ReadTape(const std::string& name, const std::vector<std::uint8_t>& bytes) {
    return Read(LoadTape(name, bytes), MayBeBlank::kNo);
}

}  // namespace recorder
