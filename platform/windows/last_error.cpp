#include "platform/windows/last_error.h"

#include <array>

#include "platform/modules.h"

namespace platform {

std::string WordsFor(unsigned long error) {
    constexpr DWORD kCapacity = 512;
    std::array<char, kCapacity> buffer{};
    // Without the line breaks that the system's texts have.
    constexpr DWORD kForm =
        FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK;
    const DWORD length =
        FormatMessageA(kForm, nullptr, error, 0, buffer.data(), kCapacity, nullptr);
    std::string words(buffer.data(), length);
    while (words.ends_with(' ') || words.ends_with('.'))
        words.pop_back();
    return words.empty() ? "error " + std::to_string(error) : words;
}

std::string WordsForLastError() {
    return WordsFor(GetLastError());
}

std::string LastLoadFailure() {
    return WordsForLastError();
}

}  // namespace platform
