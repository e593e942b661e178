#include "headless/scene_file/top_chunk.h"

#include <algorithm>
#include <array>
#include <bit>

#include "headless/scene_file/scene_chunks.h"
#include "headless/storage/checksum.h"

namespace headless {

TopChunk::TopChunk(FileSink& sink, std::uint16_t id)
    : sink_(sink), writer_(sink), begin_(sink.Size()) {
    writer_.BeginChunk(id);
}

void TopChunk::Float(float number) {
    Number(std::bit_cast<std::uint32_t>(number));
}

void TopChunk::Text(std::string_view text) {
    Number(static_cast<std::uint32_t>(text.size()));
    Bytes(std::as_bytes(std::span(text)));
}

void TopChunk::Class(const StoredClass& type) {
    Number(type.superClass);
    Number(type.id.partA);
    Number(type.id.partB);
    Text(type.name);
}

void TopChunk::Bytes(std::span<const std::byte> bytes) {
    sink_.Append(bytes);
}

// The length is known, and counts the checksum in, before the checksum is worked out over it.
bool TopChunk::End() {
    const std::uint64_t end = sink_.Size();
    Bytes(std::array<std::byte, kChecksumBytes>{});
    if (writer_.EndChunk() != IO_OK) return false;
    constexpr std::size_t kBlockBytes = std::size_t{32} * 1024;
    std::array<std::byte, kBlockBytes> block;
    Checksum checksum;
    for (std::uint64_t at = begin_; at < end;) {
        const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(end - at, kBlockBytes));
        const auto bytes = std::span(block).first(count);
        if (!sink_.ReadBack(at, bytes)) return false;
        checksum.Add(bytes);
        at += count;
    }
    return sink_.Overwrite(end, LittleEndian<kChecksumBytes>(checksum.Value()));
}

}  // namespace headless
