#include "headless/storage/byte_sink.h"

#include <algorithm>
#include <cerrno>
#include <system_error>

namespace headless {
namespace {

constexpr std::size_t kSinkBytes = std::size_t{256} * 1024;

void Put(std::fstream& file, std::span<const std::byte> bytes) {
    file.write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
}

bool IsWithin(std::uint64_t position, std::size_t count, std::uint64_t size) {
    return position <= size && count <= size - position;
}

}  // namespace

bool MemorySink::Append(std::span<const std::byte> bytes) {
    bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
    return true;
}

bool MemorySink::Overwrite(std::uint64_t position, std::span<const std::byte> bytes) {
    if (!IsWithin(position, bytes.size(), Size())) return false;
    std::copy(bytes.begin(), bytes.end(), bytes_.begin() + static_cast<std::ptrdiff_t>(position));
    return true;
}

FileSink::FileSink(const std::string& path) {
    file_.rdbuf()->pubsetbuf(nullptr, 0);
    file_.open(path, std::ios::in | std::ios::out | std::ios::binary | std::ios::trunc);
    block_.reserve(kSinkBytes);
    if (!file_.is_open()) NoteFailure();
}

bool FileSink::Append(std::span<const std::byte> bytes) {
    if (block_.size() + bytes.size() > kSinkBytes && !Flush()) return false;
    size_ += bytes.size();
    if (bytes.size() <= kSinkBytes) {
        block_.insert(block_.end(), bytes.begin(), bytes.end());
        return failure_.empty();
    }
    Put(file_, bytes);
    return file_.good() || NoteFailure();
}

bool FileSink::Overwrite(std::uint64_t position, std::span<const std::byte> bytes) {
    if (!IsWithin(position, bytes.size(), size_)) return false;
    if (position >= Flushed()) {
        std::copy(bytes.begin(), bytes.end(),
                  block_.begin() + static_cast<std::ptrdiff_t>(position - Flushed()));
        return failure_.empty();
    }
    if (!Flush()) return false;
    file_.seekp(static_cast<std::streamoff>(position));
    Put(file_, bytes);
    file_.seekp(0, std::ios::end);
    return file_.good() || NoteFailure();
}

bool FileSink::ReadBack(std::uint64_t position, std::span<std::byte> bytes) {
    if (!IsWithin(position, bytes.size(), size_)) return false;
    if (position >= Flushed()) {
        const auto from = block_.begin() + static_cast<std::ptrdiff_t>(position - Flushed());
        std::copy_n(from, bytes.size(), bytes.begin());
        return failure_.empty();
    }
    if (!Flush()) return false;
    file_.seekg(static_cast<std::streamoff>(position));
    file_.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    file_.seekp(0, std::ios::end);
    return file_.good() || NoteFailure();
}

bool FileSink::Close() {
    if (!Flush()) return false;
    file_.close();
    return file_.good() || NoteFailure();
}

bool FileSink::Flush() {
    if (!failure_.empty()) return false;
    Put(file_, block_);
    block_.clear();
    return file_.good() || NoteFailure();
}

// Of several failures the first stays, and nothing is written after it.
bool FileSink::NoteFailure() {
    const int reason = errno != 0 ? errno : EIO;
    if (failure_.empty()) failure_ = std::generic_category().message(reason);
    return false;
}

}  // namespace headless
