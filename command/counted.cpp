#include "command/counted.h"

namespace headless {

std::string Counted(std::size_t count, const std::string& noun, const std::string& several) {
    const std::string number = std::to_string(count) + ' ';
    if (count == 1) return number + noun;
    return number + (several.empty() ? noun + 's' : several);
}

}  // namespace headless
