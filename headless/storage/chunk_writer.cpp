#include "headless/storage/chunk_writer.h"

#include <cstring>
#include <string_view>

#include "headless/storage/chunk_format.h"

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
    failed_ = !sink_->Overwrite(start - kChunkLengthBytes, length);
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

}  // namespace headless
