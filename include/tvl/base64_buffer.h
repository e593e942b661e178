#pragma once

#include <cstdint>
#include <string>
#include <vector>

// Bytes and their base64 text, in the standard form of RFC 4648 (section 4): the alphabet with '+'
// and '/', padding with '=', and no line breaks. A text that does not decode gives no bytes, which
// its reader takes for data that is missing. Both sides of the Core boundary compile it for
// themselves.
//
//     const Base64Buffer picture(bytes.data(), count);
//     node.AddChild(XMLNode("picture", picture.ToText()));
class Base64Buffer {
  public:
    // Holds a copy of `count` bytes; none if `count` is not above 0 or there is no array.
    Base64Buffer(const void* bytes, std::int32_t count);

    // Holds the bytes that the text stands for, or none if it does not decode: its length is no
    // multiple of 4, or a character that is needed is not in the alphabet, blanks and line ends
    // included. More lenient than the RFC in two points: bits that are left over in a padded group
    // count for nothing, and a padded group may stand anywhere and just yields fewer bytes.
    explicit Base64Buffer(const std::string& text);

    // Four characters for every three bytes begun; the empty text for no bytes.
    std::string ToText() const;

    // Copies the bytes to an array of `size` bytes. False, and nothing is copied, if it is too
    // small or there is none.
    bool CopyTo(void* target, std::int32_t size) const;

    const std::vector<std::uint8_t>& Bytes() const { return bytes_; }

  private:
    std::vector<std::uint8_t> bytes_;
};
