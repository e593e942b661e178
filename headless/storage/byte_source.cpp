#include "storage/byte_source.h"

#include <algorithm>
#include <cstring>

namespace headless {

std::size_t MemorySource::ReadAt(std::uint64_t position, std::span<std::byte> bytes) {
    if (position >= bytes_.size()) return 0;
    const auto there = bytes_.subspan(static_cast<std::size_t>(position));
    const std::size_t count = std::min(there.size(), bytes.size());
    if (count > 0) std::memcpy(bytes.data(), there.data(), count);
    return count;
}

FileSource::FileSource(const std::string& path) : file_(path, std::ios::binary | std::ios::ate) {
    if (!file_.is_open()) return;
    const std::streamoff end = file_.tellg();
    size_ = end > 0 ? static_cast<std::uint64_t>(end) : 0;
    position_ = size_;
}

// The stream is moved only where it does not stand already, because that empties its buffer.
std::size_t FileSource::ReadAt(std::uint64_t position, std::span<std::byte> bytes) {
    if (position >= size_) return 0;
    file_.clear();
    if (position != position_) file_.seekg(static_cast<std::streamoff>(position));
    file_.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    const auto count = static_cast<std::size_t>(file_.gcount());
    position_ = position + count;
    return count;
}

}  // namespace headless
