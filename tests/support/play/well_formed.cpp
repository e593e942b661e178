#include "tests/support/play/well_formed.h"

#include "recorder/stream/record_reader.h"

namespace play {

using namespace recorder;

void WellFormed::Take(const Record& record, std::span<const std::byte> bytes) noexcept {
    const RecordHead& head = record.head;
    at_ = &head;
    if (bytes.size() != head.size || !AreValuesGood(record)) return Fail("values", head);
    Follow(head);
    if (head.kind == RecordKind::kObject) told_.insert(head.object);
    FindUntold(record);
}

void WellFormed::Follow(const RecordHead& head) {
    const bool isEnd = head.kind == RecordKind::kAnswer || head.kind == RecordKind::kThrown;
    if (head.kind == RecordKind::kSession) {
        open_.clear();
        told_.clear();
        lastNumber_ = 0;
    }
    if (isEnd) {
        if (open_.empty()) return Fail("an answer to nothing", head);
        const RecordHead call = open_.back();
        open_.pop_back();
        if (call.call != head.call || call.operation != head.operation ||
            call.object != head.object)
            Fail("an answer to another call", head);
    } else if (head.call != ++lastNumber_) {
        Fail("a number", head);
    }
    if (head.nesting != open_.size() || head.thread != 0) Fail("nesting", head);
    if (head.kind != RecordKind::kCall) return;
    ++calls_;
    open_.push_back(head);
}

// A snapshot is told by the call that lends it, whatever else has no name by being used.
void WellFormed::FindUntold(const Record& record) {
    const bool isAnswer = record.head.kind == RecordKind::kAnswer;
    ValueReader reader(record);
    Name(record.head.object);
    for (const char letter : LettersOf(record.head)) {
        std::span<const std::uint64_t> words = reader.Skip(letter);
        if (letter == 'O') words = words.subspan(1);
        if (letter == 'x') words = words[0] == 'o' ? words.subspan(1) : words.first(0);
        if (letter != 'o' && letter != 'O' && letter != 'x') continue;
        for (const ObjectId object : words) {
            const bool isSnapshot = KindOf(object) >= ObjectKind::kSnapshot &&
                                    KindOf(object) <= ObjectKind::kShapeSnapshot;
            if (isAnswer && isSnapshot) told_.insert(object);
            Name(object);
        }
    }
}

void WellFormed::Name(ObjectId object) {
    switch (KindOf(object)) {
        case ObjectKind::kNone:
        case ObjectKind::kAdaptor:
        case ObjectKind::kCore:
        case ObjectKind::kListener:
        case ObjectKind::kChunk:
            return;
        default:
            if (!told_.contains(object)) Fail("an object that nobody was told of", *at_);
    }
}

void WellFormed::Fail(std::string fault, const RecordHead& head) {
    fault += " of record " + std::to_string(head.call) + ", ";
    faults_.push_back(fault.append(RowOf(head.operation).name));
}

}  // namespace play
