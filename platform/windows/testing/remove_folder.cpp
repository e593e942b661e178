#include <system_error>

#include "platform/testing.h"

namespace platform {

// Behind this mark the system takes longer paths than usual.
void RemoveFolder(const std::filesystem::path& folder) {
    std::error_code ignored;
    const std::filesystem::path whole = std::filesystem::absolute(folder).make_preferred();
    std::filesystem::remove_all(L"\\\\?\\" + whole.native(), ignored);
}

}  // namespace platform
