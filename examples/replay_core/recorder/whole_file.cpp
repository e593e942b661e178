#include "replay_core/recorder/whole_file.h"

#include <filesystem>
#include <system_error>
#include <utility>

#include "platform/narrow_path.h"

namespace replay {

WholeFile::WholeFile(std::string path)
    : path_(std::move(path)),
      partPath_(path_ + ".unfinished"),
      stream_(partPath_, std::ios::binary | std::ios::trunc) {}

WholeFile::~WholeFile() {
    if (!stream_.is_open()) return;
    stream_.close();
    std::error_code ignored;
    std::filesystem::remove(platform::FromNarrow(partPath_), ignored);
}

void WholeFile::Write(std::string_view text) {
    stream_.write(text.data(), static_cast<std::streamsize>(text.size()));
}

std::string WholeFile::Finish() {
    if (!stream_.is_open()) return CannotBeWritten();
    stream_.close();
    std::error_code error;
    if (stream_)
        std::filesystem::rename(platform::FromNarrow(partPath_), platform::FromNarrow(path_),
                                error);
    if (stream_ && !error) return {};
    std::filesystem::remove(platform::FromNarrow(partPath_), error);
    return CannotBeWritten();
}

std::string WholeFile::CannotBeWritten() const {
    return path_ + ": the file cannot be written";
}

}  // namespace replay
