#include "platform/folder_names.h"

#include <memory>

#include "platform/narrow_path.h"
#include "platform/win32.h"

namespace platform {

std::vector<std::string> NamesInFolder(const std::string& folder) {
    struct Close {
        void operator()(void* search) const { FindClose(search); }
    };
    std::vector<std::string> names;
    WIN32_FIND_DATAW entry;
    const std::wstring all = (FromNarrow(folder) / L"*").wstring();
    HANDLE const found = FindFirstFileW(all.c_str(), &entry);
    if (found == INVALID_HANDLE_VALUE) return names;
    const std::unique_ptr<void, Close> search(found);
    do {
        std::string name = ToNarrow(std::filesystem::path(entry.cFileName));
        if (!name.empty()) names.push_back(std::move(name));
    } while (FindNextFileW(found, &entry));
    return names;
}

}  // namespace platform
