#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// Bytes, and their base64 text by RFC 4648: the standard alphabet with `=` padding, in one run
// without line breaks. Both sides of the Core boundary compile it for themselves.
class Base64Buffer {
  public:
    // A copy of `count` bytes; none if `count` is not above 0 or there is no array.
    Base64Buffer(const void* bytes, std::int32_t count);

    // The bytes that `text` stands for, or none: a length that is no multiple of 4, or a character
    // that is not in the alphabet (blanks and line ends too) makes the whole text fail. A padded
    // group may stand anywhere and yields fewer bytes.
    explicit Base64Buffer(const std::string& text);

    // The empty text for no bytes.
    std::string ToText() const;

    // False, and nothing is copied, if `size` is smaller than the number of bytes.
    bool CopyTo(void* target, std::int32_t size) const;

    const std::vector<std::uint8_t>& Bytes() const { return bytes_; }

  private:
    std::vector<std::uint8_t> bytes_;
};
