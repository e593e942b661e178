#include "platform/same_file.h"

#include <filesystem>
#include <system_error>

namespace platform {

bool AreSameFile(const std::string& first, const std::string& second) {
    namespace fs = std::filesystem;
    std::error_code error;
    if (fs::equivalent(first, second, error)) return true;
    const fs::path firstPlace = fs::weakly_canonical(first, error);
    const fs::path secondPlace = fs::weakly_canonical(second, error);
    return !error && firstPlace == secondPlace;
}

}  // namespace platform
