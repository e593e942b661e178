#include "headless/storage/chunk_reader.h"

#include <algorithm>
#include <array>

#include "headless/storage/chunk_format.h"

namespace headless {

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

}  // namespace headless
