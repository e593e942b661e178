#pragma once

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

namespace replay {

// A file that is complete or untouched: it is written beside its place, and takes its place when it
// is finished. What is not finished is removed.
class WholeFile {
  public:
    explicit WholeFile(std::string path);
    ~WholeFile();
    WholeFile(const WholeFile&) = delete;
    WholeFile& operator=(const WholeFile&) = delete;

    bool IsOpen() const { return stream_.is_open(); }

    void Write(std::string_view text);

    // What is written from here on is in vain.
    bool HasFailed() const { return !stream_; }

    // Empty, or what went wrong, now or in any write, in one line that names the file.
    std::string Finish();

    std::string CannotBeWritten() const;

  private:
    void Remove() noexcept;

    std::string path_;
    // Made in time, so that no memory is needed to clear up.
    std::filesystem::path place_;
    std::filesystem::path part_;
    std::ofstream stream_;
};

}  // namespace replay
