#include "platform/environment.h"

#include <cstdlib>

namespace platform {

void SetVariable(const char* name, const std::string& value) {
    if (value.empty())
        unsetenv(name);
    else
        setenv(name, value.c_str(), 1);
}

}  // namespace platform
