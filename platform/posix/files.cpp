#include <sys/stat.h>

#include <filesystem>

#include "platform/posix/guarded.h"
#include "platform/posix/native_path.h"
#include "platform/registry_text/text.h"
#include "platform/win32.h"

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
