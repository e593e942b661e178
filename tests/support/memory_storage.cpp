#include "support/memory_storage.h"

#include <algorithm>
#include <cstring>

IOResult MemorySave::BeginChunk(std::uint16_t id) {
    const std::uint32_t unknownLength = 0;
    Write(&id, sizeof id, nullptr);
    Write(&unknownLength, sizeof unknownLength, nullptr);
    open_.push_back(bytes.size());
    return IO_OK;
}

IOResult MemorySave::EndChunk() {
    if (open_.empty()) return IO_ERROR;
    const auto length = static_cast<std::uint32_t>(bytes.size() - open_.back());
    std::memcpy(bytes.data() + open_.back() - sizeof length, &length, sizeof length);
    open_.pop_back();
    return IO_OK;
}

IOResult MemorySave::Write(const void* data, std::uint32_t count, std::uint32_t* written) {
    const auto* const first = static_cast<const std::byte*>(data);
    bytes.insert(bytes.end(), first, first + count);
    if (written) *written = count;
    return IO_OK;
}

IOResult MemorySave::WriteCString(const char* text) {
    return Write(text, static_cast<std::uint32_t>(std::strlen(text) + 1), nullptr);
}

IOResult MemoryLoad::OpenChunk() {
    std::uint16_t id = 0;
    std::uint32_t length = 0;
    if (Left() < sizeof id + sizeof length) return IO_END;
    Read(&id, sizeof id, nullptr);
    Read(&length, sizeof length, nullptr);
    id_ = id;
    ends_.push_back(at_ + std::min<std::size_t>(length, Left()));
    return IO_OK;
}

IOResult MemoryLoad::CloseChunk() {
    if (ends_.size() == 1) return IO_ERROR;
    at_ = ends_.back();
    ends_.pop_back();
    return IO_OK;
}

IOResult MemoryLoad::Read(void* data, std::uint32_t count, std::uint32_t* read) {
    const auto there = static_cast<std::uint32_t>(std::min<std::size_t>(count, Left()));
    std::copy_n(bytes_.data() + at_, there, static_cast<std::byte*>(data));
    at_ += there;
    if (read) *read = there;
    return there == count ? IO_OK : IO_ERROR;
}

IOResult MemoryLoad::ReadCStringChunk(char** text) {
    text_.assign(reinterpret_cast<const char*>(bytes_.data() + at_), Left());
    text_.resize(std::strlen(text_.c_str()));
    at_ = ends_.back();
    *text = text_.data();
    return IO_OK;
}
