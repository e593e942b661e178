#include "command/capture_files.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <iterator>
#include <string_view>
#include <system_error>
#include <utility>

#include "command/exit_status.h"
#include "platform/files.h"

namespace headless {
namespace {

namespace fs = std::filesystem;

constexpr char kAnyCapture[] = "*.bvh";

bool IsAlike(char one, char other) {
    const auto lower = [](char c) { return std::tolower(static_cast<unsigned char>(c)); };
    return lower(one) == lower(other);
}

// Whenever a letter does not fit, the last * is taken to stand for one more.
bool Fits(std::string_view name, std::string_view pattern) {
    std::size_t at = 0;
    std::size_t behindStar = std::string_view::npos;
    std::size_t restOfStar = 0;  // in the name
    for (std::size_t letter = 0; letter < name.size();) {
        if (at < pattern.size() && pattern[at] == '*') {
            behindStar = ++at;
            restOfStar = letter;
        } else if (at < pattern.size() &&
                   (pattern[at] == '?' || IsAlike(pattern[at], name[letter]))) {
            ++at;
            ++letter;
        } else if (behindStar != std::string_view::npos) {
            at = behindStar;
            letter = ++restOfStar;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', at) == std::string_view::npos;
}

// Files that fit, under the names that they have from where the command runs. Hidden ones are not
// meant.
std::vector<std::string> FilesIn(const fs::path& folder, const std::string& pattern) {
    std::vector<std::string> files;
    for (const std::string& name :
         platform::NamesInFolder(folder.empty() ? "." : platform::ToNarrow(folder))) {
        std::error_code unknown;
        const fs::path file = folder / platform::FromNarrow(name);
        if (!name.starts_with('.') && Fits(name, pattern) && !fs::is_directory(file, unknown))
            files.push_back(platform::ToNarrow(file));
    }
    std::ranges::sort(files);
    return files;
}

// None where a folder or a pattern holds none: then `why` says so.
std::vector<std::string> FilesOf(const std::string& named, std::string& why) {
    std::error_code unknown;
    const fs::path path = platform::FromNarrow(named);
    const std::string pattern = platform::ToNarrow(path.filename());
    const bool isFolder = fs::is_directory(path, unknown);
    const bool isPattern = pattern.find_first_of("*?") != std::string::npos;
    if (!isFolder && (!isPattern || fs::exists(path, unknown))) return {named};
    std::vector<std::string> files =
        isFolder ? FilesIn(path, kAnyCapture) : FilesIn(path.parent_path(), pattern);
    if (files.empty())
        why = named +
              (isFolder ? ": this folder holds no capture (.bvh)" : ": no file has such a name");
    return files;
}

}  // namespace

CaptureFiles FilesOfCaptures(const std::vector<std::string>& named) {
    CaptureFiles found;
    for (const std::string& name : named) {
        std::string why;
        std::ranges::copy(FilesOf(name, why), std::back_inserter(found.files));
        if (!why.empty()) found.missing.push_back({name, std::move(why)});
    }
    if (found.files.empty()) throw Failure(found.missing.front().why);
    return found;
}

}  // namespace headless
