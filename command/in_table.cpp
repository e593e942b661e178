#include "command/in_table.h"

#include <algorithm>

namespace headless {

std::string InTable(std::string text) {
    const auto breaks = [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7F'; };
    std::replace_if(text.begin(), text.end(), breaks, '?');
    return text;
}

}  // namespace headless
