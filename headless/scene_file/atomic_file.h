#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "headless/storage/byte_sink.h"

namespace headless {

// The name of a file that is being written: so many hexadecimal digits between the two.
inline constexpr std::string_view kSavingPrefix = ".";
inline constexpr std::string_view kSavingSuffix = ".saving";
inline constexpr std::size_t kSavingDigits = 8;

// How an error begins that says why a file cannot be written.
std::string NotWritten(const std::string& path);

// A file that is written beside the place it is meant for and takes that place when it is whole.
// What does not come so far leaves nothing behind, and whatever stood at the place stands. Throws
// SceneFileError.
class AtomicFile {
  public:
    explicit AtomicFile(const std::string& path);
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    FileSink& Sink() { return sink_; }

    // Where the bytes stand until they take their place, once they are handed to the system.
    const std::string& WrittenPath() const { return written_.Path(); }
    void Close();

    // After Close: onto the disk, and into place. The result is the place, behind all links.
    std::string TakePlace();

    // Throws, with what the system said of the sink.
    [[noreturn]] void FailToWrite() const;

  private:
    // A new file in the folder of `place`, under a name that nobody has. It is removed unless it
    // is forgotten.
    class Written {
      public:
        Written(const std::string& place, const std::string& toldAs);
        ~Written();
        Written(const Written&) = delete;
        Written& operator=(const Written&) = delete;
        const std::string& Path() const { return path_; }
        void Forget() { file_.clear(); }

      private:
        std::string path_;
        std::filesystem::path file_;  // the same, for when there is no memory to make it
    };

    std::string path_;   // as it was given, for messages
    std::string place_;  // behind whatever links lead to it
    Written written_;
    FileSink sink_;  // closed by then, since no system removes a file that is open
};

}  // namespace headless
