#include "platform/load_failure.h"

#include "platform/win32.h"
#include "platform/windows/last_error.h"

namespace platform {

std::string LastLoadFailure() {
    return WordsForLastError();
}

}  // namespace platform
