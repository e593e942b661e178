#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "platform/files.h"

namespace platform {
namespace {

bool Flush(const std::string& path, int flags) {
    const int file = open(path.c_str(), flags | O_CLOEXEC);
    if (file < 0) return false;
    bool flushed = fsync(file) == 0;
    while (!flushed && errno == EINTR)
        flushed = fsync(file) == 0;
    const int reason = errno;
    close(file);
    errno = reason;
    return flushed;
}

std::string LastError() {
    return std::generic_category().message(errno);
}

}  // namespace

NewFile MakeNewFile(const std::string& path, std::string& reason) {
    if (std::FILE* const file = std::fopen(path.c_str(), "wbx")) {
        std::fclose(file);
        return NewFile::kMade;
    }
    if (errno == EEXIST) return NewFile::kNameTaken;
    reason = LastError();
    return NewFile::kRefused;
}

void StartFlush([[maybe_unused]] const std::string& path) {
#if defined(SYNC_FILE_RANGE_WRITE)
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) return;
    constexpr off64_t kToTheEnd = 0;
    sync_file_range(file, 0, kToTheEnd, SYNC_FILE_RANGE_WRITE);
    close(file);
#endif
}

// Once the name has moved, the folder is flushed as well as its file system can: the old file is
// gone by then, so that a refusal would help nobody.
std::string ReplaceFile(const std::string& finished, const std::string& place) {
    std::string folder = std::filesystem::path(place).parent_path();
    if (folder.empty()) folder = ".";
    if (!Flush(finished, O_RDONLY)) return LastError();
    if (std::rename(finished.c_str(), place.c_str()) != 0) return LastError();
    Flush(folder, O_RDONLY | O_DIRECTORY);
    return {};
}

}  // namespace platform
