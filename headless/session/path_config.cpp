#include "host/path_config.h"

#include <algorithm>

#include "headless/session/path_config.h"

IPathConfigMgr::~IPathConfigMgr() = default;

namespace headless {
namespace {

std::vector<std::string> directories;

class SearchPath final : public IPathConfigMgr {
  public:
    bool AddSessionMapDir(const HostString& directory, bool) override {
        const bool isKnown = std::ranges::find(directories, directory) != directories.end();
        if (directory.empty() || isKnown) return false;
        directories.push_back(directory);
        return true;
    }
};

}  // namespace

const std::vector<std::string>& SessionMapDirectories() {
    return directories;
}

void ForgetMapDirectories() {
    directories.clear();
}

}  // namespace headless

IPathConfigMgr* IPathConfigMgr::GetPathConfigMgr() {
    static headless::SearchPath searchPath;
    return &searchPath;
}
