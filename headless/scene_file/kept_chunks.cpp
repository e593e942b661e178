#include <algorithm>
#include <new>
#include <optional>
#include <span>

#include "headless/breaches/breach_book.h"
#include "headless/scene_file/file_errors.h"
#include "headless/scene_file/scene_file.h"
#include "headless/storage/chunks.h"

namespace headless {
namespace {

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

IOResult NotingReader::OpenChunk() {
    if (inside_) return inside_->OpenChunk();
    opened_ = Position();
    const IOResult result = outer_.OpenChunk();
    if (result != IO_OK) return result;
    inside_.emplace(outer_.Inside());
    return IO_OK;
}

std::uint16_t NotingReader::CurChunkID() {
    const bool isNested = inside_ && inside_->IsInChunk();
    return isNested ? inside_->CurChunkID() : outer_.CurChunkID();
}

IOResult NotingReader::CloseChunk() {
    if (!inside_ || inside_->IsInChunk()) return Here().CloseChunk();
    // A chunk that was skipped fits, but has not been read.
    const bool isSkipped = inside_->Left() == outer_.Left();
    const bool isAtEnd = inside_->Left() == 0;
    const bool fits = !inside_->HasMisfit() && (isSkipped || isAtEnd);
    inside_.reset();
    const IOResult result = outer_.CloseChunk();
    const StoredRange chunk{opened_, Position()};
    if (!fits && !misfit_) misfit_ = chunk;
    if (fits && isAtEnd) read_.push_back(chunk);
    return result;
}

IOResult NotingReader::Read(void* bytes, std::uint32_t count, std::uint32_t* read) {
    return Here().Read(bytes, count, read);
}

IOResult NotingReader::ReadCStringChunk(char** text) {
    char* read = nullptr;
    const IOResult result = Here().ReadCStringChunk(&read);
    text_ = read;  // outlives the chunk
    if (text != nullptr) *text = text_.data();
    return result;
}

void NotingReader::End(bool hasSucceeded) {
    if (!inside_ || !hasSucceeded) return;
    while (inside_->IsInChunk())
        inside_->CloseChunk();
    CloseChunk();
}

std::vector<StoredRange> NotingReader::Unread() const {
    std::vector<StoredRange> unread;
    std::uint64_t from = chunks_.begin;
    for (const StoredRange& read : read_) {
        if (from < read.begin) unread.push_back({from, read.begin});
        from = read.end;
    }
    if (from < chunks_.end) unread.push_back({from, chunks_.end});
    return unread;
}

GUP* Find(std::span<const RunningUtility> running, const StoredClass& type) {
    const auto found = std::ranges::find_if(
        running, [&](const RunningUtility& utility) { return ClassOf(utility) == type.Key(); });
    return found != running.end() ? found->utility : nullptr;
}

// What the utility's loading came to; in words if it failed. A lack of memory says nothing of the
// file, and ends the work on it.
std::string LoadFailure(GUP& utility, NotingReader& reader) {
    try {
        if (utility.Load(&reader) == IO_OK) return {};
    } catch (const std::bad_alloc&) {
        throw;
    } catch (...) {
        return "could not read its chunks (" + ThrownWords() +
               "); they are kept as they are stored";
    }
    return "could not read its chunks; they are kept as they are stored";
}

using Bytes = std::span<const std::byte>;

// The chunk at the front, or everything if that is none.
Bytes FirstChunk(Bytes bytes) {
    if (bytes.size() < kChunkHeaderBytes) return bytes;
    const std::uint64_t length = FromLittleEndian(&bytes[kChunkIdBytes], kChunkLengthBytes);
    if (length > bytes.size() - kChunkHeaderBytes) return bytes;
    return bytes.first(kChunkHeaderBytes + static_cast<std::size_t>(length));
}

std::vector<Bytes> ChunksIn(Bytes bytes) {
    std::vector<Bytes> chunks;
    for (; !bytes.empty(); bytes = bytes.subspan(chunks.back().size()))
        chunks.push_back(FirstChunk(bytes));
    return chunks;
}

// Those of `kept` that `own` does not hold.
std::vector<std::byte> Without(Bytes own, Bytes kept) {
    const std::vector<Bytes> present = ChunksIn(own);
    std::vector<std::byte> left;
    for (const Bytes chunk : ChunksIn(kept)) {
        const bool isThere = std::ranges::any_of(
            present, [&](Bytes other) { return std::ranges::equal(chunk, other); });
        if (!isThere) left.insert(left.end(), chunk.begin(), chunk.end());
    }
    return left;
}

}  // namespace

std::vector<std::byte> SceneFileReader::BytesOf(const std::vector<StoredRange>& ranges) {
    std::vector<std::byte> all;
    for (const StoredRange& range : ranges) {
        const std::vector<std::byte> bytes = BytesOf(range);
        all.insert(all.end(), bytes.begin(), bytes.end());
    }
    return all;
}

KeptChunks SceneFileReader::LoadUtility(const StoredUtility& stored, GUP& utility,
                                        std::vector<std::string>& complaints) {
    const auto complain = [&](std::uint64_t place, const std::string& what) {
        complaints.push_back(path_ + ": at byte " + std::to_string(place) + ": " +
                             stored.type.name + " " + what);
    };
    NotingReader reader(*source_, stored.chunks);
    const HostEvent event("the loading", stored.type.name.c_str());
    const std::string failure = LoadFailure(utility, reader);
    reader.End(failure.empty());
    const std::vector<std::byte> unread = BytesOf(reader.Unread());
    if (!failure.empty()) {
        complain(stored.chunks.begin, failure);
        // Behind them all it says only that it has not taken everything that it has read.
        return {stored.type, BytesOf(stored.chunks), reader.IsInside(), unread};
    }
    if (const std::optional<StoredRange> misfit = reader.Misfit()) {
        complain(misfit->begin,
                 "could not read all of a chunk as it is; it is kept as it is stored");
    }
    return {.type = stored.type, .chunks = unread};
}

std::vector<KeptChunks> SceneFileReader::LoadUtilities(std::span<const RunningUtility> running,
                                                       std::vector<std::string>& complaints) {
    std::vector<KeptChunks> kept;
    for (const StoredUtility& stored : document_.utilities) {
        GUP* const utility = Find(running, stored.type);
        KeptChunks left = utility
                              ? LoadUtility(stored, *utility, complaints)
                              : KeptChunks{.type = stored.type, .chunks = BytesOf(stored.chunks)};
        if (!left.chunks.empty()) kept.push_back(std::move(left));
    }
    return kept;
}

std::vector<std::byte> WithKept(const KeptChunks& kept, std::vector<std::byte> own) {
    if (own.empty()) return kept.chunks;
    const std::vector<std::byte> beside = Without(own, kept.hasFailed ? kept.unread : kept.chunks);
    own.insert(kept.hasFailed ? own.end() : own.begin(), beside.begin(), beside.end());
    return own;
}

}  // namespace headless
