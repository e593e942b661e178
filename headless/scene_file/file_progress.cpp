#include "headless/scene_file/file_progress.h"

#include <utility>

#include "headless/scene_file/file_errors.h"

namespace headless {
namespace {

FileProgressHandler theHandler;
std::string thePath;  // empty if nothing is told
bool canBeGivenUp = true;

}  // namespace

void SetFileProgressHandler(FileProgressHandler handler) {
    theHandler = std::move(handler);
}

ToldFile::ToldFile(const std::string& path) {
    thePath = path;
    canBeGivenUp = true;
}

ToldFile::~ToldFile() {
    thePath.clear();
}

void ToldFile::GoOnToTheEnd() {
    canBeGivenUp = false;
}

void TellDone(const char* doing, std::uint64_t done, std::uint64_t whole) {
    if (thePath.empty() || !theHandler) return;
    const bool goesOn = theHandler({doing, thePath, done, whole});
    if (goesOn || !canBeGivenUp || done >= whole) return;
    constexpr std::uint64_t kHundred = 100;
    throw SceneFileError(thePath + ": given up when " + std::to_string(kHundred * done / whole) +
                         " % were done (" + doing + ')');
}

}  // namespace headless
