#include "platform/new_file.h"
#include "platform/replace_file.h"
#include "platform/win32.h"
#include "platform/windows/last_error.h"

namespace platform {
namespace {

bool Flush(const std::string& path) {
    const HANDLE file = CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ,
                                    nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return false;
    const bool isFlushed = FlushFileBuffers(file) != 0;
    const DWORD reason = GetLastError();
    CloseHandle(file);
    SetLastError(reason);
    return isFlushed;
}

}  // namespace

std::string ReplaceFile(const std::string& finished, const std::string& place) {
    constexpr DWORD kWhole = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
    const bool isDone =
        Flush(finished) && MoveFileExA(finished.c_str(), place.c_str(), kWhole) != 0;
    return isDone ? std::string() : WordsForLastError();
}

NewFile MakeNewFile(const std::string& path, std::string& reason) {
    const HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file != INVALID_HANDLE_VALUE) {
        CloseHandle(file);
        return NewFile::kMade;
    }
    if (GetLastError() == ERROR_FILE_EXISTS) return NewFile::kNameTaken;
    reason = WordsForLastError();
    return NewFile::kRefused;
}

}  // namespace platform
