#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "recorder/stream/record.h"

// The form of a tape (docs/tape.md): places of one size, each with a segment, which is a head and
// records behind it up to a word of zeros or the end of the place. The newest segment, which
// records are added to, is in one of the first two places; when it is full it is copied to one of
// the others, and the next one begins in the other of the two.
namespace recorder {

inline constexpr std::uint64_t kSegmentMagic = 0x6570'6154'736d'754c;  // "LumsTape"
inline constexpr std::uint32_t kTapeVersion = 1;
inline constexpr char kNoTape[] = "it is no tape";
inline constexpr char kNewerTape[] = "it is a tape of a newer program";

struct SegmentHead {
    std::uint64_t magic = kSegmentMagic;
    std::uint32_t version = kTapeVersion;
    std::uint32_t checksum = 0;  // as a record has it, of the words from the version on
    std::uint64_t number = 0;    // from 1; no two of a tape have one
    std::uint64_t bytes = 0;     // of each segment, a multiple of kSegmentGrain
    std::uint64_t position = 0;  // bytes that records take up in all segments before this one
    std::uint64_t session = 0;   // of which its first record is, from 1
};
inline constexpr std::size_t kSegmentHeadWords = sizeof(SegmentHead) / 8;
static_assert(sizeof(SegmentHead) == 48);

inline constexpr std::size_t kDesks = 2;  // the places where segments are written
inline constexpr std::uint64_t kSegmentGrain = std::uint64_t{1} << 12;
inline constexpr std::uint64_t kLargestSegment = std::uint64_t{1} << 30;
inline constexpr std::uint64_t kNewSegment = std::uint64_t{1} << 18;  // of tapes that are made here

// A record of a tape alone: a part of one that a segment has no room for. `call` is the size of the
// whole in bytes, `object` how many of these lie in parts before; the values are bytes of it.
inline constexpr auto kPart = static_cast<RecordKind>(255);
inline constexpr std::uint64_t kLeastPart = sizeof(RecordHead) + 8;  // bytes

// An object, or a session, that is told again at the beginning of a segment.
inline bool IsToldAgain(const RecordHead& head) {
    return head.call == 0 &&
           (head.kind == RecordKind::kObject || head.kind == RecordKind::kSession);
}

// What the checksums of records in a segment are combined with, so that what lay at its place
// before is never taken for a part of it.
constexpr std::uint32_t SaltOf(std::uint64_t number) {
    return static_cast<std::uint32_t>(number) * 0x9e37'79b1;
}

// With its checksum; of a record, that and its size, without salt.
SegmentHead Sealed(SegmentHead head);
void Seal(std::span<std::uint64_t> record);

// The head that the words begin with, of whatever version; nothing if they begin with none.
std::optional<SegmentHead> ReadSegmentHead(std::span<const std::uint64_t> words);

// Of each segment in a file of that size, as the first good head tells; 0 if there is none.
// `wordsAt` gives what lies at an offset.
template <class WordsAt>
std::uint64_t SegmentBytesOf(std::uint64_t size, const WordsAt& wordsAt) {
    for (std::uint64_t offset = 0; offset < size; offset += kSegmentGrain) {
        const auto head = ReadSegmentHead(wordsAt(offset));
        if (head && offset % head->bytes == 0) return head->bytes;
    }
    return 0;
}

// What lies behind a segment's head: records and parts, in their order. Where a damaged one was
// passed over there is none.
struct Piece {
    std::size_t at = 0;  // word of the segment
    std::optional<Record> record;
};
struct SegmentContents {
    std::vector<Piece> pieces;
    std::size_t end = 0;  // word behind the last piece
};
SegmentContents ReadSegment(std::span<const std::uint64_t> segment, std::uint64_t number);

}  // namespace recorder
