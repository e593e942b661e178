#pragma once

#include <filesystem>
#include <string>
#include <system_error>

#include "platform/narrow_path.h"
#include "platform/platform_api.h"

namespace platform {

// Flushes a finished file to the disk and gives it the place of another in the same folder, whole
// or not at all, whenever the machine may stop. The result is empty, or the system's word for what
// failed; the other file stands untouched then.
PLATFORM_API std::string ReplaceFile(const std::string& finished, const std::string& place);

// Whether a file is there that nobody may write to. Some systems would let it be replaced.
inline bool IsReadOnly(const std::string& place) {
    namespace fs = std::filesystem;
    constexpr fs::perms kWritable =
        fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
    std::error_code error;
    const fs::file_status status = fs::status(FromNarrow(place), error);
    return fs::exists(status) && (status.permissions() & kWritable) == fs::perms::none;
}

inline constexpr char kReadOnly[] = "it is read-only";

}  // namespace platform
