#include "command/core_environment.h"

#include <cstdlib>

namespace headless {

void SetVariable(const char* name, const std::string& value) {
#if defined(_WIN32)
    _putenv_s(name, value.c_str());
#else
    if (value.empty())
        unsetenv(name);
    else
        setenv(name, value.c_str(), 1);
#endif
}

}  // namespace headless
