#include "headless/scene_file/kept_chunks.h"

#include <algorithm>
#include <span>

#include "headless/storage/chunk_format.h"

namespace headless {
namespace {

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

std::vector<std::byte> WithKept(const KeptChunks& kept, std::vector<std::byte> own) {
    if (own.empty()) return kept.chunks;
    const std::vector<std::byte> beside = Without(own, kept.hasFailed ? kept.unread : kept.chunks);
    own.insert(kept.hasFailed ? own.end() : own.begin(), beside.begin(), beside.end());
    return own;
}

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

}  // namespace headless
