#include "platform/files.h"

#include <memory>

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

// The system's own full form, in which dots and blanks at the end are gone; empty if it has none.
std::wstring FullName(const std::filesystem::path& path) {
    const DWORD room = GetFullPathNameW(path.c_str(), 0, nullptr, nullptr);
    std::wstring name(room, L'\0');
    name.resize(GetFullPathNameW(path.c_str(), room, name.data(), nullptr));
    return name;
}

}  // namespace

// The one call that there is waits for the disk.
void StartFlush(const std::string&) {}

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

bool AreSameFile(const std::string& first, const std::string& second) {
    const std::filesystem::path one = FromNarrow(first);
    const std::filesystem::path other = FromNarrow(second);
    std::error_code error;
    if (std::filesystem::equivalent(one, other, error)) return true;
    const std::wstring name = FullName(one);
    constexpr int kWhole = -1;  // up to the NUL
    return !name.empty() && CompareStringOrdinal(name.c_str(), kWhole, FullName(other).c_str(),
                                                 kWhole, TRUE) == CSTR_EQUAL;
}

std::vector<std::string> NamesInFolder(const std::string& folder) {
    struct Close {
        void operator()(void* search) const { FindClose(search); }
    };
    std::vector<std::string> names;
    WIN32_FIND_DATAW entry;
    const std::wstring all = (FromNarrow(folder) / L"*").wstring();
    HANDLE const found = FindFirstFileW(all.c_str(), &entry);
    if (found == INVALID_HANDLE_VALUE) return names;
    const std::unique_ptr<void, Close> search(found);
    do {
        names.push_back(Shown(std::filesystem::path(entry.cFileName)));
    } while (FindNextFileW(found, &entry));
    return names;
}

}  // namespace platform
