#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "headless/scene_file/scene_document.h"
#include "headless/storage/chunk_reader.h"
#include "host/storage.h"

// What becomes of a utility's chunks that it does not take: none is lost for want of somebody who
// can read it.
namespace headless {

// Chunks that a utility has not taken from the scene that was opened.
struct KeptChunks {
    StoredClass type;
    std::vector<std::byte> chunks;    // all of them, if it failed
    bool hasFailed = false;           // inside one of them, and the others are taken or not read
    std::vector<std::byte> unread{};  // if it failed so: those that it has not read whole
};

// What a save writes of a utility: `own`, which it has written itself, and what is kept beside it,
// but for chunks that stand in `own` to the byte. Kept chunks are the older and stand ahead, so
// that whoever takes both has the newer one last; those at which its reading failed stand behind,
// where they keep it from nothing. Where `own` is empty, everything is written that is kept.
std::vector<std::byte> WithKept(const KeptChunks& kept, std::vector<std::byte> own);

// Reads a utility's chunks for it, and notes what it reads of them.
class NotingReader final : public ILoad {
  public:
    NotingReader(ByteSource& source, StoredRange chunks)
        : outer_(source, chunks.begin, chunks.end), chunks_(chunks) {}

    IOResult OpenChunk() override;
    std::uint16_t CurChunkID() override;
    IOResult CloseChunk() override;
    IOResult Read(void* bytes, std::uint32_t count, std::uint32_t* read) override;
    IOResult ReadCStringChunk(char** text) override;

    // The utility is done. The chunk in which it has left the reader is read if it succeeded.
    void End(bool hasSucceeded);

    // A chunk is open.
    bool IsInside() const { return inside_.has_value(); }

    // What has not been read: chunks that were not opened or were skipped, and those that do not
    // fit what was read of them, of which `Misfit` is the first.
    std::vector<StoredRange> Unread() const;
    std::optional<StoredRange> Misfit() const { return misfit_; }

  private:
    ChunkReader& Here() { return inside_ ? *inside_ : outer_; }

    // Where the next chunk begins, while none is open.
    std::uint64_t Position() const { return chunks_.end - outer_.Left(); }

    ChunkReader outer_;                  // on the level of the chunks themselves
    std::optional<ChunkReader> inside_;  // in the one that is open
    StoredRange chunks_;
    std::uint64_t opened_ = 0;  // where the one that is open begins
    std::string text_;
    std::vector<StoredRange> read_;
    std::optional<StoredRange> misfit_;
};

}  // namespace headless
