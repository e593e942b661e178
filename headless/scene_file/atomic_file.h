#pragma once

#include <string>

#include "storage/byte_sink.h"

namespace headless {

// A file that is written beside the place it is meant for and takes that place when it is whole.
// What does not come so far leaves nothing behind, and whatever stood at the place stands. Throws
// SceneFileError.
class AtomicFile {
  public:
    explicit AtomicFile(const std::string& path);
    ~AtomicFile();
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    FileSink& Sink() { return sink_; }

    // Where the bytes stand until they take their place, once they are handed to the system.
    const std::string& WrittenPath() const { return written_; }
    void Close();

    // After Close: onto the disk, and into place.
    void TakePlace();

    // Throws, with what the system said of the sink.
    [[noreturn]] void FailToWrite() const;

  private:
    std::string path_;     // as it was given, for messages
    std::string place_;    // behind whatever links lead to it
    std::string written_;  // empty once it has taken its place
    FileSink sink_;
};

}  // namespace headless
