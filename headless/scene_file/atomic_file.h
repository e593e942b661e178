#pragma once

#include <string>

#include "headless/storage/byte_sink.h"
#include "platform/whole_file.h"

namespace headless {

// How an error begins that says why a file cannot be written.
std::string NotWritten(const std::string& path);

// A whole file that the host writes byte by byte. Throws SceneFileError.
class AtomicFile {
  public:
    explicit AtomicFile(const std::string& path);

    FileSink& Sink() { return sink_; }

    // Where the bytes stand until they take their place, once they are handed to the system.
    const std::string& WrittenPath() const { return file_.Path(); }
    void Close();

    // After Close. The result is the place, behind all links.
    std::string TakePlace();

    // Throws, with what the system said of the sink.
    [[noreturn]] void FailToWrite() const;

  private:
    std::string path_;  // as it was given, for messages
    platform::WholeFile file_;
    FileSink sink_;  // closed by then, since no system removes a file that is open
};

// Removes what killed processes left of their saves beside `place`: files under a name of
// AtomicFile's that nobody has written to for a day, since another process may be saving there
// right now, and that stop short of the end of a scene, or are pictures. A scene that is whole
// stays, as it can be the only copy of a take. What cannot be removed, or looked at for want of
// memory, is left to the next save.
void SweepAbandonedSaves(const std::string& place) noexcept;

}  // namespace headless
