#include "headless/storage/byte_source.h"

#include <algorithm>
#include <cstring>

namespace headless {
namespace {

constexpr std::size_t kSourceBytes = std::size_t{64} * 1024;

// So many bytes are better read to where they are wanted than by way of the block.
constexpr std::size_t kLargeRead = kSourceBytes / 2;

}  // namespace

std::size_t MemorySource::ReadAt(std::uint64_t position, std::span<std::byte> bytes) {
    if (position >= bytes_.size()) return 0;
    const auto there = bytes_.subspan(static_cast<std::size_t>(position));
    const std::size_t count = std::min(there.size(), bytes.size());
    if (count > 0) std::memcpy(bytes.data(), there.data(), count);
    return count;
}

FileSource::FileSource(const std::string& path) {
    file_.rdbuf()->pubsetbuf(nullptr, 0);
    file_.open(path, std::ios::binary | std::ios::ate);
    if (!file_.is_open()) return;
    const std::streamoff end = file_.tellg();
    size_ = end > 0 ? static_cast<std::uint64_t>(end) : 0;
}

std::size_t FileSource::ReadAt(std::uint64_t position, std::span<std::byte> bytes) {
    if (position >= size_) return 0;
    const std::size_t known = FromBlock(position, bytes);
    if (known == bytes.size()) return known;
    const auto rest = bytes.subspan(known);
    position += known;
    if (rest.size() >= kLargeRead) return known + FromFile(position, rest);
    block_.resize(kSourceBytes);
    blockBegin_ = position;
    block_.resize(FromFile(position, block_));
    return known + FromBlock(position, rest);
}

std::size_t FileSource::FromBlock(std::uint64_t position, std::span<std::byte> bytes) const {
    if (position < blockBegin_ || position - blockBegin_ >= block_.size()) return 0;
    const auto there = std::span(block_).subspan(static_cast<std::size_t>(position - blockBegin_));
    const std::size_t count = std::min(there.size(), bytes.size());
    if (count > 0) std::memcpy(bytes.data(), there.data(), count);
    return count;
}

std::size_t FileSource::FromFile(std::uint64_t position, std::span<std::byte> bytes) {
    file_.clear();
    file_.seekg(static_cast<std::streamoff>(position));
    file_.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return static_cast<std::size_t>(std::max<std::streamsize>(file_.gcount(), 0));
}

}  // namespace headless
