#include "headless/storage/byte_sink.h"

#include <algorithm>
#include <cerrno>
#include <system_error>

#include "platform/files.h"

namespace headless {
namespace {

constexpr std::size_t kSinkBytes = std::size_t{256} * 1024;

// After each stretch the system is asked to bring to the disk what it has.
constexpr std::uint64_t kStretchBytes = std::uint64_t{16} << 20;

void Put(std::ofstream& file, std::span<const std::byte> bytes) {
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

bool MemorySink::FillIn(std::uint64_t position, std::span<const std::byte> bytes) {
    if (!IsWithin(position, bytes.size(), Size())) return false;
    std::copy(bytes.begin(), bytes.end(), bytes_.begin() + static_cast<std::ptrdiff_t>(position));
    return true;
}

FileSink::FileSink(const std::string& path) : path_(path) {
    file_.rdbuf()->pubsetbuf(nullptr, 0);
    file_.open(path, std::ios::binary | std::ios::trunc);
    block_.reserve(kSinkBytes);
    if (!file_.is_open()) NoteFailure();
}

bool FileSink::Append(std::span<const std::byte> bytes) {
    while (!bytes.empty()) {
        if (block_.size() == kSinkBytes && !Flush()) return false;
        const auto piece = bytes.first(std::min(bytes.size(), kSinkBytes - block_.size()));
        if (piece.size() < kSinkBytes)
            block_.insert(block_.end(), piece.begin(), piece.end());
        else if (!HandOver(piece))
            return false;
        bytes = bytes.subspan(piece.size());
    }
    return failure_.empty();
}

bool FileSink::FillIn(std::uint64_t position, std::span<const std::byte> bytes) {
    if (!IsWithin(position, bytes.size(), Size())) return false;
    if (position >= flushed_) {
        std::copy(bytes.begin(), bytes.end(),
                  block_.begin() + static_cast<std::ptrdiff_t>(position - flushed_));
        return failure_.empty();
    }
    if (!Flush()) return false;
    if (position >= start_) checksum_.FillIn(bytes, flushed_ - position - bytes.size());
    file_.seekp(static_cast<std::streamoff>(position));
    Put(file_, bytes);
    file_.seekp(0, std::ios::end);
    return file_.good() || NoteFailure();
}

void FileSink::StartChecksum() {
    start_ = Size();
    checksum_ = {};
}

std::uint32_t FileSink::ChecksumSinceStart() const {
    Checksum checksum = checksum_;
    checksum.Append(Summed(block_));
    return checksum.Value();
}

bool FileSink::Close() {
    if (!Flush()) return false;
    file_.close();
    return file_.good() || NoteFailure();
}

// Of bytes that come next for the system, those that the checksum is to count.
std::span<const std::byte> FileSink::Summed(std::span<const std::byte> bytes) const {
    const std::uint64_t before = start_ > flushed_ ? start_ - flushed_ : 0;
    return bytes.subspan(static_cast<std::size_t>(before));
}

bool FileSink::Flush() {
    if (!HandOver(block_)) return false;
    block_.clear();
    return true;
}

// The checksum takes bytes in at the last moment, when nothing in the block is filled in any more
// and while they are near to the processor.
bool FileSink::HandOver(std::span<const std::byte> bytes) {
    if (!failure_.empty()) return false;
    checksum_.Append(Summed(bytes));
    Put(file_, bytes);
    if (!file_.good()) return NoteFailure();
    const std::uint64_t stretch = flushed_ / kStretchBytes;
    flushed_ += bytes.size();
    if (flushed_ / kStretchBytes > stretch) platform::StartFlush(path_);
    return true;
}

// Of several failures the first stays, and nothing is written after it.
bool FileSink::NoteFailure() {
    const int reason = errno != 0 ? errno : EIO;
    if (failure_.empty()) failure_ = std::generic_category().message(reason);
    return false;
}

}  // namespace headless
