#include "platform/folder_names.h"

#include <dirent.h>

#include <memory>

namespace platform {

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
