#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

#include "platform/platform_api.h"

namespace platform {

// The name of a file that is being written: so many hexadecimal digits between the two.
inline constexpr std::string_view kSavingPrefix = ".";
inline constexpr std::string_view kSavingSuffix = ".saving";
inline constexpr std::size_t kSavingDigits = 8;

// A file that is whole or untouched. It is written under a short name that nobody has, beside the
// place it is meant for, and takes that place when it is whole and on the disk, however the machine
// may stop. What does not come so far is removed, and whatever stood at the place stands. A link is
// followed; what is no plain file, and what nobody may write to, is not replaced. The new file is
// as open to others as the old one was.
class PLATFORM_API WholeFile {
  public:
    explicit WholeFile(const std::string& path);

    // A file that takes nobody's place, for as long as this lives.
    struct InFolder {
        std::string folder;
    };
    explicit WholeFile(const InFolder& passing);

    ~WholeFile();
    WholeFile(const WholeFile&) = delete;
    WholeFile& operator=(const WholeFile&) = delete;

    // Empty, or why there is no file to write to.
    const std::string& Refusal() const { return refusal_; }

    // Where it stands until it takes its place. It is there, and empty, from the start.
    const std::string& Path() const { return path_; }

    // What it is meant for, behind all links.
    const std::string& Place() const { return place_; }

    // To be called once it is closed. The result is empty, or the system's word for what failed.
    std::string TakePlace();

  private:
    void MakeIn(const std::filesystem::path& folder);

    std::string refusal_;
    std::string place_;
    std::string path_;
    std::filesystem::path file_;  // the same, for when there is no memory to make it; empty if none
};

}  // namespace platform
