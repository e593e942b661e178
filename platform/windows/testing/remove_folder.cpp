#include <string>

#include "platform/testing.h"
#include "platform/win32.h"

namespace platform {
namespace {

// The run-time library lists no folder whose path is longer than usual; the system does.
void Remove(const std::wstring& path) {
    WIN32_FIND_DATAW entry{};
    const HANDLE search = FindFirstFileW((path + L"\\*").c_str(), &entry);
    bool isThere = search != INVALID_HANDLE_VALUE;
    for (; isThere; isThere = FindNextFileW(search, &entry) != 0) {
        const std::wstring name = entry.cFileName;
        if (name == L"." || name == L"..") continue;
        // What a link leads to stays.
        constexpr DWORD kFolderOrLink = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
        if ((entry.dwFileAttributes & kFolderOrLink) == FILE_ATTRIBUTE_DIRECTORY)
            Remove(path + L'\\' + name);
        else
            DeleteFileW((path + L'\\' + name).c_str());
    }
    if (search != INVALID_HANDLE_VALUE) FindClose(search);
    RemoveDirectoryW(path.c_str());
}

}  // namespace

// Behind this mark the system takes paths of any length.
void RemoveFolder(const std::filesystem::path& folder) {
    Remove(L"\\\\?\\" + std::filesystem::absolute(folder).make_preferred().native());
}

}  // namespace platform
