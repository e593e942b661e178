#pragma once

#include <fstream>
#include <string>
#include <string_view>

#include "platform/whole_file.h"

namespace replay {

// A text that is written into a file as it comes. The file is complete or untouched, see
// platform::WholeFile.
class TextFile {
  public:
    explicit TextFile(std::string path);

    bool IsOpen() const { return stream_.is_open(); }

    void Write(std::string_view text);

    // What is written from here on is in vain.
    bool HasFailed() const { return !stream_; }

    // Empty, or what went wrong, now or in any write, in one line that names the file.
    std::string Finish();

    std::string CannotBeWritten() const;

  private:
    std::string path_;
    platform::WholeFile file_;
    std::ofstream stream_;  // closed by then, since no system removes a file that is open
};

// A text as a field of comma-separated values (RFC 4180): in quotes where it has to be.
std::string CsvField(std::string_view text);

}  // namespace replay
