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

std::string ToNarrow(const std::filesystem::path& path) {
    const std::wstring& wide = path.native();
    const int size = static_cast<int>(wide.size());
    BOOL isLacking = FALSE;
    const int length = WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, wide.data(), size, nullptr,
                                           0, nullptr, &isLacking);
    if (isLacking) return {};
    std::string text(static_cast<std::size_t>(length), '\0');
    WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, wide.data(), size, text.data(), length,
                        nullptr, nullptr);
    return text;
}

}  // namespace platform
