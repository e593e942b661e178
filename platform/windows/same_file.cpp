#include "platform/same_file.h"

#include <filesystem>
#include <system_error>

#include "platform/narrow_path.h"
#include "platform/win32.h"

namespace platform {
namespace {

// The system's own full form, in which dots and blanks at the end are gone; empty if it has none.
std::wstring FullName(const std::filesystem::path& path) {
    const DWORD room = GetFullPathNameW(path.c_str(), 0, nullptr, nullptr);
    std::wstring name(room, L'\0');
    name.resize(GetFullPathNameW(path.c_str(), room, name.data(), nullptr));
    return name;
}

}  // namespace

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

}  // namespace platform
