#include "platform/narrow_path.h"

namespace platform {

std::filesystem::path FromNarrow(const std::string& path) {
    return path;
}

std::string ToNarrow(const std::filesystem::path& path) {
    return path.string();
}

std::string Shown(const std::filesystem::path& path) {
    return path.string();
}

}  // namespace platform
