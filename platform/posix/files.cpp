#include "platform/files.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <memory>

#include "platform/formats/text.h"
#include "platform/posix/guarded.h"
#include "platform/posix/native_path.h"
#include "platform/win32.h"

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

bool AreSameFile(const std::string& first, const std::string& second) {
    namespace fs = std::filesystem;
    std::error_code error;
    if (fs::equivalent(first, second, error)) return true;
    const fs::path firstPlace = fs::weakly_canonical(first, error);
    const fs::path secondPlace = fs::weakly_canonical(second, error);
    return !error && firstPlace == secondPlace;
}

std::vector<std::string> NamesInFolder(const std::string& folder) {
    struct Close {
        void operator()(DIR* opened) const { closedir(opened); }
    };
    std::vector<std::string> names;
    const std::unique_ptr<DIR, Close> opened(opendir(folder.c_str()));
    if (!opened) return names;
    while (const dirent* const entry = readdir(opened.get()))
        names.emplace_back(entry->d_name);
    return names;
}

}  // namespace platform

extern "C" {

BOOL CreateDirectoryA(LPCSTR path, void*) {
    if (path == nullptr) return FALSE;
    return platform::Guarded<BOOL>(FALSE, [&] {
        constexpr mode_t withinUmask = 0777;
        return mkdir(platform::NativePath(path).c_str(), withinUmask) == 0 ? TRUE : FALSE;
    });
}

DWORD GetCurrentDirectoryA(DWORD size, LPSTR buffer) {
    return platform::Guarded<DWORD>(0, [&] {
        const std::string directory = std::filesystem::current_path().string();
        const std::size_t needed = directory.size() + 1;
        if (buffer == nullptr || size < needed) return static_cast<DWORD>(needed);
        return static_cast<DWORD>(platform::CopyText(directory, buffer, size));
    });
}

}  // extern "C"
