#include "recorder/tape/read_tape.h"

#include <algorithm>
#include <cstring>
#include <deque>
#include <fstream>
#include <stdexcept>

#include "platform/narrow_path.h"
#include "recorder/tape/segments.h"

namespace recorder {
namespace {

using Words = std::vector<std::uint64_t>;

// What records lie in: the file's words, and those of records that were put together.
struct Memory {
    Words file;
    std::deque<Words> joined;
};

struct Segment {
    SegmentHead head;
    std::uint64_t offset = 0;  // in the file
    SegmentContents contents;
};

std::string At(std::uint64_t byte, const std::string& what) {
    return "at byte " + std::to_string(byte) + ": " + what;
}

bool IsBlank(std::span<const std::uint64_t> words) {
    return std::ranges::all_of(words, [](std::uint64_t word) { return word == 0; });
}

// As the first good head tells it, in words; 0 if there is none.
std::size_t SegmentWordsOf(std::span<const std::uint64_t> file) {
    constexpr std::size_t kGrain = kSegmentGrain / 8;
    for (std::size_t at = 0; at < file.size(); at += kGrain) {
        const auto head = ReadSegmentHead(file.subspan(at));
        if (head && at * 8 % head->bytes == 0) return head->bytes / 8;
    }
    return 0;
}

// The segments of a file in the order of their numbers.
class Segments {
  public:
    Segments(const std::string& name, std::span<const std::uint64_t> file,
             std::vector<std::string>& damages)
        : damages_(damages) {
        const std::size_t size = SegmentWordsOf(file);
        if (size == 0) throw std::runtime_error(name + ": it is no tape");
        for (std::size_t at = 0; at < file.size(); at += size)
            TakeIn(name, file.subspan(at, std::min(size, file.size() - at)), at * 8, size * 8);
        Sort();
    }

    std::vector<Segment> list;

  private:
    // The first place has none for a moment, when one was copied and the next one begins.
    void TakeIn(const std::string& name, std::span<const std::uint64_t> words, std::uint64_t offset,
                std::uint64_t bytes) {
        const auto head = ReadSegmentHead(words);
        if (head && head->version > kTapeVersion)
            throw std::runtime_error(name + ": " + kNewerTape);
        if (head && head->bytes == bytes)
            list.push_back({*head, offset, ReadSegment(words, head->number)});
        else if (!IsBlank(words) && (offset > 0 || words.front() != 0))
            damages_.push_back(
                At(offset, "the head of a segment is damaged, which is passed over"));
    }

    // Of one that was just being copied there are two, of which one can be a part.
    void Sort() {
        const auto order = [](const Segment& one, const Segment& other) {
            return one.head.number != other.head.number ? one.head.number < other.head.number
                                                        : one.contents.end > other.contents.end;
        };
        const auto isSame = [](const Segment& one, const Segment& other) {
            return one.head.number == other.head.number;
        };
        std::ranges::stable_sort(list, order);
        list.erase(std::unique(list.begin(), list.end(), isSame), list.end());
    }

    std::vector<std::string>& damages_;
};

// Puts records into sessions, one piece after another.
class Sessions {
  public:
    Sessions(TapeContents& tape, Memory& memory) : tape_(tape), memory_(memory) {}

    // `next` is the segment behind it on the tape, null behind the last one.
    void Take(const Segment& segment, const Segment* next) {
        Enter(segment.head);
        for (const auto& [at, record] : segment.contents.pieces) {
            offset_ = segment.offset + at * 8;
            if (record)
                TakePiece(*record);
            else
                TellDamage("a record is damaged");
        }
        const std::uint64_t end = segment.contents.end * 8;
        const std::uint64_t position = segment.head.position + end - sizeof(SegmentHead);
        next_ = segment.head.number + 1;
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
        tape_.damages.push_back(At(offset_, what));
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

    TapeContents& tape_;
    Memory& memory_;
    std::uint64_t offset_ = 0;   // of what is being read, in the file
    std::uint64_t next_ = 0;     // number of the segment that goes on where the last one ended
    std::uint64_t session_ = 0;  // number of the last one on the tape
    bool isNews_ = false;
    Words part_;  // of a record, up to where it was read
};

TapeContents ReadWords(const std::string& name, Words&& words, std::uint64_t bytes) {
    const auto memory = std::make_shared<Memory>(Memory{std::move(words), {}});
    TapeContents tape;
    tape.path = name;
    tape.bytes = bytes;
    tape.memory = memory;
    const Segments segments(name, memory->file, tape.damages);
    Sessions built(tape, *memory);
    const std::vector<Segment>& list = segments.list;
    for (std::size_t i = 0; i < list.size(); ++i)
        built.Take(list[i], i + 1 < list.size() ? &list[i + 1] : nullptr);
    std::erase_if(tape.sessions,
                  [](const TapeSession& session) { return session.records.empty(); });
    if (tape.sessions.empty()) throw std::runtime_error(name + ": there is nothing on the tape");
    return tape;
}

}  // namespace

TapeContents ReadTape(const std::string& path) {
    namespace fs = std::filesystem;
    const fs::path place = platform::FromNarrow(path);
    std::error_code error;
    const std::uintmax_t size = fs::file_size(place, error);
    std::ifstream file(place, std::ios::binary);
    if (error || !file) throw std::runtime_error(path + ": it cannot be read");
    Words words((size + 7) / 8);
    file.read(reinterpret_cast<char*>(words.data()), static_cast<std::streamsize>(size));
    return ReadWords(path, std::move(words), static_cast<std::uint64_t>(file.gcount()));
}

TapeContents ReadTape(const std::string& name, const std::vector<std::uint8_t>& bytes) {
    Words words((bytes.size() + 7) / 8);
    if (!bytes.empty()) std::memcpy(words.data(), bytes.data(), bytes.size());
    return ReadWords(name, std::move(words), bytes.size());
}

}  // namespace recorder
