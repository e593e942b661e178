#pragma once

#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "platform/narrow_path.h"
#include "platform/platform_api.h"

// What is done to files and folders by their narrow names, beyond what std::filesystem does alike
// on every system.
namespace platform {

enum class NewFile { kMade, kNameTaken, kRefused };

// Makes an empty file of that name, which nobody has yet. If it is refused, `reason` gets the
// system's word for it.
PLATFORM_API NewFile MakeNewFile(const std::string& path, std::string& reason);

// Lets the system begin to bring to the disk what it has of a file by now, so that ReplaceFile has
// less to wait for. It promises nothing, and is nothing where the system has no such call.
PLATFORM_API void StartFlush(const std::string& path);

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

// Whether two paths lead to one file, or would if there were one: by links, by another case of the
// letters where the system does not mind it, or by whatever else it takes for the same.
PLATFORM_API bool AreSameFile(const std::string& first, const std::string& second);

// The names of what is in a folder, in no order; none of a folder that cannot be read. A name that
// narrow text cannot spell is as Shown tells it, and no file can be found by it. Unlike
// std::filesystem's own, which ends the process then, this throws std::bad_alloc where memory runs
// out.
PLATFORM_API std::vector<std::string> NamesInFolder(const std::string& folder);

}  // namespace platform
