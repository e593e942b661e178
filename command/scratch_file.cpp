#include "command/scratch_file.h"

#include <filesystem>
#include <random>
#include <system_error>
#include <utility>

#include "command/exit_status.h"
#include "platform/files.h"
#include "platform/narrow_path.h"

namespace headless {
namespace {

namespace fs = std::filesystem;

// Two runs at the same time do not meet.
std::string Mark() {
    return std::to_string(std::random_device{}());
}

fs::path SystemFolder() {
    std::error_code error;
    fs::path folder = fs::temp_directory_path(error);
    if (error) throw Failure("the folder for temporary files cannot be had: " + error.message());
    return folder;
}

// The length of the target's name does not count, so that what the system takes for a name is
// taken here.
std::string Place(const std::string& target) {
    if (platform::IsReadOnly(target)) throw Failure(target + ": " + platform::kReadOnly);
    const std::string name = "lumiset" + Mark() + ".part";
    if (!target.empty())
        return platform::ToNarrow(platform::FromNarrow(target).replace_filename(name));
    const fs::path folder = SystemFolder();
    std::string path = platform::ToNarrow(folder / name);
    if (path.empty())
        throw Failure(platform::Shown(folder) +
                      ": the code page lacks a letter of the folder for temporary files");
    return path;
}

}  // namespace

ScratchFile::ScratchFile(std::string target)
    : target_(std::move(target)), path_(Place(target_)), file_(platform::FromNarrow(path_)) {}

ScratchFile::~ScratchFile() {
    std::error_code absent;
    fs::remove(file_, absent);
}

void ScratchFile::Keep() {
    const std::string reason = platform::ReplaceFile(path_, target_);
    if (!reason.empty()) throw Failure(target_ + ": " + reason);
}

std::string ScratchFile::Named(std::string text) const {
    const std::size_t place = text.find(path_);
    if (place != std::string::npos && !target_.empty()) text.replace(place, path_.size(), target_);
    return text;
}

}  // namespace headless
