#include "platform/new_file.h"

#include <cerrno>
#include <cstdio>
#include <system_error>

namespace platform {

NewFile MakeNewFile(const std::string& path, std::string& reason) {
    if (std::FILE* const file = std::fopen(path.c_str(), "wbx")) {
        std::fclose(file);
        return NewFile::kMade;
    }
    if (errno == EEXIST) return NewFile::kNameTaken;
    reason = std::generic_category().message(errno);
    return NewFile::kRefused;
}

}  // namespace platform
