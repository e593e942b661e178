#include "platform/narrow_path.h"

#include "platform/win32.h"

namespace platform {
namespace {

// No path has this letter.
constexpr wchar_t kNowhere[] = L"?";

std::wstring Widened(const std::string& text) {
    const int size = static_cast<int>(text.size());
    const int length =
        MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, text.data(), size, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(length), L'\0');
    MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, text.data(), size, wide.data(), length);
    return wide;
}

}  // namespace

std::filesystem::path FromNarrow(const std::string& path) {
    const std::wstring wide = Widened(path);
    return wide.empty() && !path.empty() ? kNowhere : wide;
}

// A letter that was taken for one of its like would name another file, so that what comes back must
// be what was given.
std::string ToNarrow(const std::filesystem::path& path) {
    std::string text = Shown(path);
    return Widened(text) == path.native() ? text : std::string();
}

std::string Shown(const std::filesystem::path& path) {
    const std::wstring& wide = path.native();
    const int size = static_cast<int>(wide.size());
    // UTF-8 has every letter, and the system takes no flags for it.
    const DWORD flags = GetACP() == CP_UTF8 ? 0 : WC_NO_BEST_FIT_CHARS;
    const int length =
        WideCharToMultiByte(CP_ACP, flags, wide.data(), size, nullptr, 0, nullptr, nullptr);
    std::string text(static_cast<std::size_t>(length), '\0');
    WideCharToMultiByte(CP_ACP, flags, wide.data(), size, text.data(), length, nullptr, nullptr);
    return text;
}

}  // namespace platform
