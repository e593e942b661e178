#include "platform/narrow_path.h"
#include "platform/process.h"
#include "platform/win32.h"
// Comes after <windows.h>, whose types it needs.
#include <shellapi.h>

namespace platform {

// Alone in its file, since it needs a library of the system's that the plug-in does without.
std::string LostArgument() {
    int count = 0;
    wchar_t** const words = CommandLineToArgvW(GetCommandLineW(), &count);
    std::string lost;
    for (int i = 1; i < count && lost.empty(); ++i)
        if (*words[i] != L'\0' && ToNarrow(words[i]).empty()) lost = Shown(words[i]);
    LocalFree(words);
    return lost;
}

}  // namespace platform
