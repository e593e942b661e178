#include "headless/control/keyframe_chunk.h"

#include <cstring>

#include "headless/storage/chunks.h"

namespace headless {
namespace {

constexpr std::uint16_t kChunkId = 1;
constexpr std::int32_t kVersion = 100;
constexpr std::size_t kValueOffset = 8;  // in a record; ahead of it are flags and time

struct Header {
    std::int32_t version;
    std::int32_t recordBytes;
    std::int32_t count;
};

}  // namespace

std::optional<KeyframeChunk> KeyframeChunk::In(std::span<const std::byte> saved) {
    constexpr std::size_t kAhead = kChunkHeaderBytes + sizeof(Header);
    if (saved.size() < kAhead || FromLittleEndian(saved.data(), kChunkIdBytes) != kChunkId)
        return {};
    Header header;
    std::memcpy(&header, saved.data() + kChunkHeaderBytes, sizeof header);
    if (header.version != kVersion || header.count < 0) return {};
    const auto bytes = static_cast<std::size_t>(header.recordBytes);
    if (bytes != kMatrixRecordBytes && bytes != kScalarRecordBytes) return {};
    const auto count = static_cast<std::size_t>(header.count);
    const auto records = saved.subspan(kAhead);
    if (records.size() != (count + 1) * bytes) return {};
    return KeyframeChunk(records, bytes, count);
}

std::span<const std::byte> KeyframeChunk::Record(std::size_t key) const {
    return records_.subspan(key * recordBytes_, recordBytes_);
}

std::span<const std::byte> KeyframeChunk::Value(std::size_t key) const {
    return Record(key).subspan(kValueOffset);
}

TimeValue KeyframeChunk::Time(std::size_t key) const {
    TimeValue ticks = 0;
    std::memcpy(&ticks, Record(key).data() + kValueOffset - sizeof ticks, sizeof ticks);
    return ticks;
}

std::span<const std::byte> LastingPart(std::span<const std::byte> saved) {
    const auto chunk = KeyframeChunk::In(saved);
    if (!chunk) return saved;
    if (chunk->Count() == 0) return chunk->Value(0);
    return saved.first(saved.size() - chunk->Record(0).size());
}

}  // namespace headless
