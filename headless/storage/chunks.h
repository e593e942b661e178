#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "headless/storage/byte_sink.h"
#include "headless/storage/byte_source.h"
#include "host/storage.h"

namespace headless {

// A chunk is its id in 2 bytes, the length of its contents in 8, and the contents: bytes, further
// chunks, or bytes with chunks behind them. Numbers are little-endian.

inline constexpr std::size_t kChunkIdBytes = 2;
inline constexpr std::size_t kChunkLengthBytes = 8;
inline constexpr std::size_t kChunkHeaderBytes = kChunkIdBytes + kChunkLengthBytes;

template <std::size_t Count>
std::array<std::byte, Count> LittleEndian(std::uint64_t number) {
    std::array<std::byte, Count> bytes;
    for (std::byte& byte : bytes) {
        byte = static_cast<std::byte>(number & 0xFF);
        number >>= 8;
    }
    return bytes;
}

inline std::uint64_t FromLittleEndian(const std::byte* bytes, std::size_t count) {
    std::uint64_t number = 0;
    while (count-- > 0)
        number = number << 8 | static_cast<std::uint64_t>(bytes[count]);
    return number;
}

// Writes chunks into a sink as they come; nothing is kept but where the open ones began. A further
// writer may work on the same sink inside a chunk that is open here, so that whoever gets that one
// cannot close what is not its own.
class ChunkWriter final : public ISave {
  public:
    explicit ChunkWriter(ByteSink& sink) : sink_(&sink) {}

    IOResult BeginChunk(std::uint16_t id) override;
    IOResult EndChunk() override;
    IOResult Write(const void* bytes, std::uint32_t count, std::uint32_t* written) override;
    IOResult WriteCString(const char* text) override;  // null is written as the empty text

    // Ends the chunks that are still open.
    void CloseAll();

    // The sink refused something, and everything since has been refused too.
    bool HasFailed() const { return failed_; }

  private:
    IOResult Append(std::span<const std::byte> bytes);

    ByteSink* sink_;
    std::vector<std::uint64_t> open_;  // where the contents of the open chunks begin
    bool failed_ = false;
};

// Reads chunks from a source. A length is believed only as far as the level that the chunk lies in
// has bytes; a chunk that would reach beyond it is an error, after which its level has no next one.
class ChunkReader final : public ILoad {
  public:
    explicit ChunkReader(ByteSource& source) : ChunkReader(source, 0, source.Size()) {}

    // The bytes from `begin` up to, not including, `end`, which lie within the source.
    ChunkReader(ByteSource& source, std::uint64_t begin, std::uint64_t end)
        : source_(&source), position_(begin), end_(end) {}

    IOResult OpenChunk() override;
    std::uint16_t CurChunkID() override;  // 0 while no chunk is open
    IOResult CloseChunk() override;
    IOResult Read(void* bytes, std::uint32_t count, std::uint32_t* read) override;

    // Reads up to a NUL or the chunk's end. Without bytes it fails and gives the empty text.
    IOResult ReadCStringChunk(char** text) override;

    // A reader for what is left of the chunk that is open, for somebody who may leave it anyhow:
    // this reader stands where it stood, and closing the chunk skips it.
    ChunkReader Inside() const { return ChunkReader(*source_, position_, End()); }

    bool IsInChunk() const { return !open_.empty(); }
    std::uint64_t Left() const { return End() - position_; }  // bytes of the level

    // What was read did not fit what there is: a read wanted more than its level held, a chunk
    // reached beyond its level, or one that was read in part was closed with bytes left over.
    bool HasMisfit() const { return hasMisfit_; }

  private:
    struct Chunk {
        std::uint16_t id;
        std::uint64_t begin;  // of the contents
        std::uint64_t end;
    };

    std::uint64_t End() const { return open_.empty() ? end_ : open_.back().end; }

    ByteSource* source_;
    std::uint64_t position_;
    std::uint64_t end_;
    std::vector<Chunk> open_;
    std::string text_;
    bool hasMisfit_ = false;
};

}  // namespace headless
