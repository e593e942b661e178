#include "command/scratch_file.h"

#include <filesystem>
#include <random>
#include <system_error>
#include <utility>

#include "command/exit_status.h"
#include "platform/narrow_path.h"

namespace headless {
namespace {

// Two runs at the same time do not meet.
std::string Mark() {
    return std::to_string(std::random_device{}());
}

std::string Place(const std::string& target) {
    if (!target.empty()) return target + ".part" + Mark();
    std::error_code none;
    const std::string place = platform::ToNarrow(std::filesystem::temp_directory_path(none) /
                                                 ("lumiset" + Mark() + ".txt"));
    if (place.empty())
        throw Failure("the folder for temporary files has a name that cannot be told to the Core");
    return place;
}

}  // namespace

ScratchFile::ScratchFile(std::string target) : target_(std::move(target)), path_(Place(target_)) {}

ScratchFile::~ScratchFile() {
    std::error_code absent;
    std::filesystem::remove(platform::FromNarrow(path_), absent);
}

void ScratchFile::Keep() {
    std::error_code error;
    std::filesystem::rename(platform::FromNarrow(path_), platform::FromNarrow(target_), error);
    if (error) throw Failure(target_ + ": " + error.message());
}

std::string ScratchFile::Named(std::string text) const {
    const std::size_t place = text.find(path_);
    if (place != std::string::npos && !target_.empty()) text.replace(place, path_.size(), target_);
    return text;
}

}  // namespace headless
