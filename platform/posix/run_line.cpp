#include <sys/wait.h>

#include <cstdlib>

#include "platform/testing.h"

namespace platform {

int RunLine(const std::string& line) {
    const int status = std::system(line.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace platform
