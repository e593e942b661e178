#include <cstdlib>

#include "platform/testing.h"

namespace platform {

// The shell takes away the first and the last quotation mark of a line.
int RunLine(const std::string& line) {
    return std::system(('"' + line + '"').c_str());
}

}  // namespace platform
