#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "headless/storage/byte_source.h"
#include "host/storage.h"

namespace headless {

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
