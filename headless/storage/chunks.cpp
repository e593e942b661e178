#include "headless/storage/chunks.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

#include "headless/memory_chunks.h"
#include "headless/storage/byte_sink.h"
#include "headless/storage/byte_source.h"
#include "host/storage.h"

ISave::~ISave() = default;
ILoad::~ILoad() = default;

namespace headless {

IOResult ChunkWriter::BeginChunk(std::uint16_t id) {
    Append(LittleEndian<kChunkIdBytes>(id));
    const IOResult result = Append(LittleEndian<kChunkLengthBytes>(0));  // till the chunk ends
    open_.push_back(sink_->Size());
    return result;
}

IOResult ChunkWriter::EndChunk() {
    if (open_.empty()) return IO_ERROR;
    const std::uint64_t start = open_.back();
    open_.pop_back();
    if (failed_) return IO_ERROR;
    const auto length = LittleEndian<kChunkLengthBytes>(sink_->Size() - start);
    failed_ = !sink_->FillIn(start - kChunkLengthBytes, length);
    return failed_ ? IO_ERROR : IO_OK;
}

IOResult ChunkWriter::Write(const void* bytes, std::uint32_t count, std::uint32_t* written) {
    const IOResult result = Append({static_cast<const std::byte*>(bytes), count});
    if (written != nullptr) *written = result == IO_OK ? count : 0;
    return result;
}

IOResult ChunkWriter::WriteCString(const char* text) {
    const char* const shown = text != nullptr ? text : "";
    return Append(std::as_bytes(std::span(shown, std::strlen(shown) + 1)));
}

void ChunkWriter::CloseAll() {
    while (!open_.empty())
        EndChunk();
}

IOResult ChunkWriter::Append(std::span<const std::byte> bytes) {
    if (!failed_) failed_ = !sink_->Append(bytes);
    return failed_ ? IO_ERROR : IO_OK;
}

IOResult ChunkReader::OpenChunk() {
    if (Left() == 0) return IO_END;
    std::array<std::byte, kChunkHeaderBytes> header;
    if (Read(header.data(), kChunkHeaderBytes, nullptr) != IO_OK) {
        position_ = End();
        return IO_ERROR;
    }
    const auto id = static_cast<std::uint16_t>(FromLittleEndian(header.data(), kChunkIdBytes));
    const std::uint64_t length = FromLittleEndian(header.data() + kChunkIdBytes, kChunkLengthBytes);
    if (length > Left()) {
        hasMisfit_ = true;
        position_ = End();
        return IO_ERROR;
    }
    open_.push_back({id, position_, position_ + length});
    return IO_OK;
}

std::uint16_t ChunkReader::CurChunkID() {
    return open_.empty() ? 0 : open_.back().id;
}

IOResult ChunkReader::CloseChunk() {
    if (open_.empty()) return IO_ERROR;
    const auto [id, begin, end] = open_.back();
    if (position_ != begin && position_ != end) hasMisfit_ = true;
    position_ = end;
    open_.pop_back();
    return IO_OK;
}

IOResult ChunkReader::Read(void* bytes, std::uint32_t count, std::uint32_t* read) {
    const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(count, Left()));
    const std::size_t got = source_->ReadAt(position_, {static_cast<std::byte*>(bytes), wanted});
    position_ += got;
    if (read != nullptr) *read = static_cast<std::uint32_t>(got);
    if (got == count) return IO_OK;
    hasMisfit_ = true;
    return IO_ERROR;
}

IOResult ChunkReader::ReadCStringChunk(char** text) {
    text_.clear();
    IOResult result = Left() > 0 ? IO_OK : IO_ERROR;
    std::array<char, 4096> block;
    bool ended = false;
    while (!ended && result == IO_OK && Left() > 0) {
        std::uint32_t count = 0;
        const auto wanted =
            static_cast<std::uint32_t>(std::min<std::uint64_t>(block.size(), Left()));
        result = Read(block.data(), wanted, &count);
        const auto* const nul = std::find(block.data(), block.data() + count, '\0');
        const auto length = static_cast<std::uint32_t>(nul - block.data());
        ended = length < count;
        if (ended) position_ -= count - length - 1;
        text_.append(block.data(), length);
    }
    if (text != nullptr) *text = text_.data();
    return result;
}

std::vector<std::byte> SavedBytes(const std::function<IOResult(ISave*)>& save) {
    MemorySink sink;
    ChunkWriter writer(sink);
    save(&writer);
    writer.CloseAll();
    return sink.Take();
}

IOResult LoadBytes(std::span<const std::byte> bytes, const std::function<IOResult(ILoad*)>& load) {
    MemorySource source(bytes);
    ChunkReader reader(source);
    return load(&reader);
}

}  // namespace headless
