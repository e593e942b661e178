#include <io.h>

#include <cstdio>
#include <cstdlib>

#include "platform/environment.h"
#include "platform/terminal.h"

namespace platform {

// Of the run-time library, which hands it on to the system.
void SetVariable(const char* name, const std::string& value) {
    _putenv_s(name, value.c_str());
}

bool IsErrorStreamATerminal() {
    return _isatty(_fileno(stderr)) != 0;
}

}  // namespace platform
