#include "command/plain_number.h"

#include <array>
#include <charconv>

namespace headless {

std::string Plain(double number) {
    std::array<char, 32> text;
    return {text.data(), std::to_chars(text.data(), text.data() + text.size(), number).ptr};
}

}  // namespace headless
