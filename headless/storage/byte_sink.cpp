#include "storage/byte_sink.h"

#include <algorithm>

namespace headless {
namespace {

void Put(std::ofstream& file, std::span<const std::byte> bytes) {
    file.write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
}

bool IsWithin(std::uint64_t position, std::span<const std::byte> bytes, std::uint64_t size) {
    return position <= size && bytes.size() <= size - position;
}

}  // namespace

bool MemorySink::Append(std::span<const std::byte> bytes) {
    bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
    return true;
}

bool MemorySink::Overwrite(std::uint64_t position, std::span<const std::byte> bytes) {
    if (!IsWithin(position, bytes, Size())) return false;
    std::copy(bytes.begin(), bytes.end(), bytes_.begin() + static_cast<std::ptrdiff_t>(position));
    return true;
}

FileSink::FileSink(const std::string& path) : file_(path, std::ios::binary | std::ios::trunc) {}

bool FileSink::Append(std::span<const std::byte> bytes) {
    Put(file_, bytes);
    size_ += bytes.size();
    return file_.good();
}

bool FileSink::Overwrite(std::uint64_t position, std::span<const std::byte> bytes) {
    if (!IsWithin(position, bytes, size_)) return false;
    file_.seekp(static_cast<std::streamoff>(position));
    Put(file_, bytes);
    file_.seekp(0, std::ios::end);
    return file_.good();
}

bool FileSink::Close() {
    file_.close();
    return file_.good();
}

}  // namespace headless
