#include "recorder/tape/segments.h"

#include <cstring>

#include "recorder/stream/record_reader.h"
#include "recorder/stream/record_writer.h"

namespace recorder {
namespace {

// Behind the magic a head has its checksum where a record has it.
std::uint32_t ChecksumOfHead(const SegmentHead& head) {
    std::uint64_t words[kSegmentHeadWords];
    std::memcpy(words, &head, sizeof head);
    return ChecksumOf(std::span(words).subspan(1));
}

// Words that the damaged record at that place says it has; 0 if that cannot be.
std::size_t SizeSaid(std::span<const std::uint64_t> words) {
    if (words.empty()) return 0;
    const std::uint64_t bytes = words.front() & 0xffff'ffff;
    const std::size_t size = bytes / 8;
    return bytes % 8 == 0 && size >= kHeadWords && size < words.size() ? size : 0;
}

}  // namespace

SegmentHead Sealed(SegmentHead head) {
    head.checksum = ChecksumOfHead(head);
    return head;
}

void Seal(std::span<std::uint64_t> record) {
    RecordHead head;
    std::memcpy(static_cast<void*>(&head), record.data(), sizeof head);
    head.size = static_cast<std::uint32_t>(record.size_bytes());
    std::memcpy(record.data(), &head, sizeof head);
    head.checksum = ChecksumOf(record);
    std::memcpy(record.data(), &head, sizeof head);
}

std::optional<SegmentHead> ReadSegmentHead(std::span<const std::uint64_t> words) {
    if (words.size() < kSegmentHeadWords || words.front() != kSegmentMagic) return std::nullopt;
    SegmentHead head;
    std::memcpy(static_cast<void*>(&head), words.data(), sizeof head);
    const bool isSized =
        head.bytes > 0 && head.bytes % kSegmentGrain == 0 && head.bytes <= kLargestSegment;
    if (!isSized || head.checksum != ChecksumOfHead(head)) return std::nullopt;
    return head;
}

// A damaged piece is passed over where a good one follows at the place that it tells.
SegmentContents ReadSegment(std::span<const std::uint64_t> segment, std::uint64_t number) {
    const std::uint32_t salt = SaltOf(number);
    SegmentContents contents;
    std::size_t at = kSegmentHeadWords;
    while (at < segment.size()) {
        const auto rest = segment.subspan(at);
        const auto record = ReadRecord(rest, salt);
        const std::size_t size = record ? record->head.size / 8 : SizeSaid(rest);
        if (!record && (size == 0 || !ReadRecord(rest.subspan(size), salt))) break;
        contents.pieces.push_back({at, record});
        at += size;
    }
    contents.end = at;
    return contents;
}

}  // namespace recorder
