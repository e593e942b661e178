#include <system_error>

#include "platform/testing.h"

namespace platform {

void RemoveFolder(const std::filesystem::path& folder) {
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
}

}  // namespace platform
