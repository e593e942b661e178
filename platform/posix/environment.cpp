#include "platform/environment.h"

#include <cstdlib>

#include "platform/arguments.h"

namespace platform {

std::string Variable(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

bool SetVariable(const char* name, const std::string& value) {
    return (value.empty() ? unsetenv(name) : setenv(name, value.c_str(), 1)) == 0;
}

// Words are bytes, of which none is lost.
std::string LostArgument() {
    return {};
}

}  // namespace platform
