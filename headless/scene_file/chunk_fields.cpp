#include "headless/scene_file/chunk_fields.h"

#include <algorithm>
#include <array>
#include <bit>

#include "headless/scene_file/scene_chunks.h"
#include "headless/storage/chunks.h"

namespace headless {

TopChunk::TopChunk(FileSink& sink, std::uint16_t id) : sink_(sink), begin_(sink.Size()) {
    sink_.StartChecksum();
    Number(id);
    Number(std::uint64_t{0});  // the length, till the chunk ends
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

// The length counts the checksum in, which is worked out over it.
bool TopChunk::End() {
    const std::uint64_t contents = begin_ + kChunkHeaderBytes;
    const auto length = LittleEndian<kChunkLengthBytes>(sink_.Size() + kChecksumBytes - contents);
    return sink_.FillIn(begin_ + kChunkIdBytes, length) &&
           sink_.Append(LittleEndian<kChecksumBytes>(sink_.ChecksumSinceStart()));
}

float FieldReader::Float(const char* what) {
    return std::bit_cast<float>(Number<std::uint32_t>(what));
}

std::string FieldReader::Text(const char* what) {
    const std::uint32_t length = Count(1, what);
    std::string text(length, '\0');
    Read(text.data(), length, what);
    return text;
}

std::uint32_t FieldReader::Count(std::size_t itemBytes, const char* what) {
    const auto count = Number<std::uint32_t>(what);
    const std::uint64_t left = end_ - position_;
    if (count > left / itemBytes) Fail(std::string(what) + " reaches beyond its chunk");
    return count;
}

void FieldReader::ExpectEnd() {
    field_ = position_;
    if (position_ != end_) Fail("there are bytes behind the last field of a chunk");
}

std::uint64_t FieldReader::Integer(std::size_t bytes, const char* what) {
    std::array<std::byte, sizeof(std::uint64_t)> stored{};
    field_ = position_;
    Read(stored.data(), bytes, what);
    return FromLittleEndian(stored.data(), bytes);
}

void FieldReader::Read(void* bytes, std::size_t count, const char* what) {
    if (count > end_ - position_) Fail(std::string(what) + " reaches beyond its chunk");
    if (source_.ReadAt(position_, {static_cast<std::byte*>(bytes), count}) != count)
        Fail("the file cannot be read");
    position_ += count;
}

}  // namespace headless
