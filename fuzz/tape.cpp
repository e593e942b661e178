#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include "fuzz/fuzzed.h"
#include "recorder/tape/compare_tapes.h"
#include "recorder/tape/object_names.h"
#include "recorder/tape/read_tape.h"
#include "recorder/tape/segments.h"
#include "recorder/tape/tape_summary.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

// Puts right the checksums of a first segment's head and of its records, as far as their sizes
// lead from one to the next.
Bytes WithChecksums(const Bytes& bytes) {
    std::vector<std::uint64_t> words(bytes.size() / 8);
    if (words.size() < recorder::kSegmentHeadWords) return bytes;
    std::memcpy(words.data(), bytes.data(), words.size() * 8);
    recorder::SegmentHead head;
    std::memcpy(static_cast<void*>(&head), words.data(), sizeof head);
    head.magic = recorder::kSegmentMagic;
    head.version = recorder::kTapeVersion;
    head.bytes = recorder::kSegmentGrain;
    head = recorder::Sealed(head);
    std::memcpy(words.data(), &head, sizeof head);
    for (std::size_t at = recorder::kSegmentHeadWords; at < words.size();) {
        const std::size_t size = (words[at] & 0xffff'ffff) / 8;
        if (size < recorder::kHeadWords || size > words.size() - at) break;
        recorder::Seal(std::span(words).subspan(at, size));
        words[at] ^= std::uint64_t{recorder::SaltOf(head.number)} << 32;
        at += size;
    }
    Bytes sealed(bytes.size());
    std::memcpy(sealed.data(), words.data(), words.size() * 8);
    return sealed;
}

// Every value of every record can be read, and is told.
void ReadValues(const recorder::TapeSession& session) {
    recorder::ObjectNames names;
    for (const recorder::Record& record : session.records) {
        Require(recorder::AreValuesGood(record));
        names.Take(record);
        names.NameOf(record.head.object);
        recorder::ValueReader values(record);
        for (const char letter : recorder::LettersOf(record.head))
            values.Skip(letter);
        Require(values.IsGood());
    }
    recorder::Summarise(session);
}

void Read(const Bytes& bytes) {
    try {
        const recorder::TapeContents tape = recorder::ReadTape("input", bytes);
        Require(!tape.sessions.empty());
        for (const recorder::TapeSession& session : tape.sessions)
            ReadValues(session);
        Require(!recorder::CompareTapes(tape, tape));
    } catch (const std::runtime_error& refused) {
        Require(std::string(refused.what()).starts_with("input: "));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Bytes bytes(data, data + size);
    Read(bytes);
    Read(WithChecksums(bytes));
    return 0;
}
