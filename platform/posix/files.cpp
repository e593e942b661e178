#include "platform/files.h"

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <memory>

#include "platform/common/text.h"
#include "platform/posix/guarded.h"
#include "platform/posix/native_path.h"
#include "platform/win32.h"

namespace platform {

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
