#include "nodes/host_name.h"

namespace {

bool ContinuesCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

// Where the character at `end` begins. Bytes that are no UTF-8 are characters of their own.
std::string::size_type CharacterStart(const std::string& text, std::string::size_type end) {
    constexpr std::string::size_type kLongestCharacter = 4;
    for (std::string::size_type back = 0; back < kLongestCharacter; ++back)
        if (!ContinuesCharacter(text[end - back])) return end - back;
    return end;
}

}  // namespace

std::string CutHostName(std::string name) {
    if (name.size() > kLongestHostName) name.resize(CharacterStart(name, kLongestHostName));
    return name;
}
