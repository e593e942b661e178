#include "recorder/tape/mapped_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <new>
#include <system_error>

namespace recorder {
namespace {

std::string WordsOf(int error) {
    return std::generic_category().message(error);
}

// Whoever outgrows the process's own limit is ended by a signal.
bool IsBeyondLimit(std::uint64_t size) {
    rlimit limit{};
    return getrlimit(RLIMIT_FSIZE, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY &&
           size > limit.rlim_cur;
}

// Sets room aside; the system's number of what failed, or 0.
int SetAside(int file, std::size_t size) {
    if (IsBeyondLimit(size)) return EFBIG;
    int error = 0;
    do {
        error = posix_fallocate(file, 0, static_cast<off_t>(size));
    } while (error == EINTR);
    return error;
}

constexpr std::size_t kMarkBytes = 1;  // of a page of its own

// True here, and false in every child that this process is doubled into; null where the system
// cannot do that.
const bool* MakeMark() {
    void* const page =
        mmap(nullptr, kMarkBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (page == MAP_FAILED) return nullptr;
    if (madvise(page, kMarkBytes, MADV_WIPEONFORK) == 0) return new (page) bool(true);
    munmap(page, kMarkBytes);
    return nullptr;
}

}  // namespace

std::unique_ptr<MappedFile> MappedFile::Open(const std::string& path, std::string& whyNot) {
    std::unique_ptr<MappedFile> opened(new MappedFile);
    constexpr mode_t kWithinUmask = 0666;
    const int file = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NONBLOCK, kWithinUmask);
    struct stat status {};
    if (file < 0) {
        whyNot = WordsOf(errno);
        return nullptr;
    }
    opened->file_ = file;
    if (fstat(file, &status) != 0 || !S_ISREG(status.st_mode))
        whyNot = "it is no file";
    else if (flock(file, LOCK_EX | LOCK_NB) != 0)
        whyNot = errno == EWOULDBLOCK ? "somebody is recording to it" : WordsOf(errno);
    else {
        if (const bool* const mark = MakeMark()) opened->mark_ = mark;
        return opened;
    }
    return nullptr;
}

MappedFile::~MappedFile() {
    Unmap();
    if (mark_ != &kMarked) munmap(const_cast<bool*>(mark_), kMarkBytes);
    if (file_ >= 0) close(static_cast<int>(file_));
}

std::uint64_t MappedFile::Size() const {
    struct stat status {};
    return fstat(static_cast<int>(file_), &status) == 0 ? static_cast<std::uint64_t>(status.st_size)
                                                        : 0;
}

std::size_t MappedFile::Read(std::uint64_t offset, std::span<std::byte> bytes) const {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t count = pread(static_cast<int>(file_), bytes.data() + done,
                                    bytes.size() - done, static_cast<off_t>(offset + done));
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) break;
        done += static_cast<std::size_t>(count);
    }
    return done;
}

std::span<std::byte> MappedFile::Map(std::size_t size, std::string& whyNot) {
    const int file = static_cast<int>(file_);
    if (const int error = SetAside(file, size)) {
        whyNot = WordsOf(error);
        return {};
    }
    void* const memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    if (memory == MAP_FAILED) {
        whyNot = WordsOf(errno);
        return {};
    }
    mapped_ = {static_cast<std::byte*>(memory), size};
    return mapped_;
}

void MappedFile::Unmap() {
    if (!mapped_.empty()) munmap(mapped_.data(), mapped_.size());
    mapped_ = {};
}

std::string MappedFile::Write(std::uint64_t offset, std::span<const std::byte> bytes) {
    if (IsBeyondLimit(offset + bytes.size())) return WordsOf(EFBIG);
    while (!bytes.empty()) {
        const ssize_t count =
            pwrite(static_cast<int>(file_), bytes.data(), bytes.size(), static_cast<off_t>(offset));
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return WordsOf(count < 0 ? errno : ENOSPC);
        bytes = bytes.subspan(static_cast<std::size_t>(count));
        offset += static_cast<std::uint64_t>(count);
    }
    return {};
}

void MappedFile::BeginSync(std::uint64_t offset, std::uint64_t size) {
    sync_file_range(static_cast<int>(file_), static_cast<off_t>(offset), static_cast<off_t>(size),
                    SYNC_FILE_RANGE_WRITE);
}

// What was written through the map is taken in.
std::string MappedFile::Sync() {
    int result = 0;
    do {
        result = fdatasync(static_cast<int>(file_));
    } while (result != 0 && errno == EINTR);
    return result == 0 ? std::string() : WordsOf(errno);
}

void MappedFile::Shrink(std::uint64_t size) {
    Unmap();
    if (size >= Size()) return;
    while (ftruncate(static_cast<int>(file_), static_cast<off_t>(size)) != 0 && errno == EINTR) {
    }
}

bool MappedFile::IsGone() const {
    struct stat status {};
    return fstat(static_cast<int>(file_), &status) != 0 || status.st_nlink == 0;
}

}  // namespace recorder
