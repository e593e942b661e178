#pragma once

#include <filesystem>
#include <string>

namespace headless {

// A file that is there only if the work on it came to its end: it is written under a name of its
// own beside `target` and takes its place at Keep. Without a target it lies in the system's folder
// for such files. What was not kept is removed.
class ScratchFile {
  public:
    // Throws a Failure if there is a target that nobody may write to.
    explicit ScratchFile(std::string target);
    ~ScratchFile();
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;

    const std::string& Path() const { return path_; }

    // Throws a Failure if it cannot take its place.
    void Keep();

    // The text with the target's name in place of the file's own, which no person knows.
    std::string Named(std::string text) const;

  private:
    std::string target_;
    std::string path_;
    std::filesystem::path file_;  // the same, for when there is no memory to make it
};

}  // namespace headless
