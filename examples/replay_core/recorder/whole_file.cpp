#include "replay_core/recorder/whole_file.h"

#include <system_error>
#include <utility>

#include "platform/narrow_path.h"

namespace replay {

WholeFile::WholeFile(std::string path)
    : path_(std::move(path)),
      place_(platform::FromNarrow(path_)),
      part_(platform::FromNarrow(path_ + ".unfinished")) {
    try {
        stream_.open(part_, std::ios::binary | std::ios::trunc);
    } catch (...) {
        Remove();
        throw;
    }
}

WholeFile::~WholeFile() {
    if (!stream_.is_open()) return;
    stream_.close();
    Remove();
}

void WholeFile::Write(std::string_view text) {
    stream_.write(text.data(), static_cast<std::streamsize>(text.size()));
}

std::string WholeFile::Finish() {
    if (!stream_.is_open()) return CannotBeWritten();
    stream_.close();
    std::error_code error;
    if (stream_) std::filesystem::rename(part_, place_, error);
    if (stream_ && !error) return {};
    Remove();
    return CannotBeWritten();
}

void WholeFile::Remove() noexcept {
    std::error_code ignored;
    std::filesystem::remove(part_, ignored);
}

std::string WholeFile::CannotBeWritten() const {
    return path_ + ": the file cannot be written";
}

}  // namespace replay
