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

// A letter that the code page lacks comes back as another one. The system can tell of it as well,
// but refuses to where the code page is UTF-8.
std::string ToNarrow(const std::filesystem::path& path) {
    const std::wstring& wide = path.native();
    const int size = static_cast<int>(wide.size());
    const int length =
        WideCharToMultiByte(CP_ACP, 0, wide.data(), size, nullptr, 0, nullptr, nullptr);
    std::string text(static_cast<std::size_t>(length), '\0');
    WideCharToMultiByte(CP_ACP, 0, wide.data(), size, text.data(), length, nullptr, nullptr);
    return Widened(text) == wide ? text : std::string();
}

}  // namespace platform
