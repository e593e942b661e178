#include "platform/terminal.h"

#include <unistd.h>

namespace platform {

bool IsErrorStreamATerminal() {
    return isatty(STDERR_FILENO) != 0;
}

}  // namespace platform
