#pragma once

#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

// The text form of a tree, as reader and writer share it: references and tokens.

// Text on its way to the end of a string. Short pieces are gathered in a buffer that stays in the
// nearest cache; long ones go to the string at once.
class XMLOutput {
  public:
    void Put(std::convertible_to<std::string_view> auto... texts) {
        PutPieces(std::string_view(texts)...);
    }

    // As the writer stores it: '&', '<', and every byte that is not printable ASCII becomes a
    // decimal reference such as "&#229;".
    void PutEscaped(std::string_view text);

    // All that was put; nothing is put after it.
    std::string Finish();

  private:
    template <class... Texts>
    void PutPieces(Texts... texts) {
        if ((texts.size() + ...) > gathered.size() - used) return (PutLong(texts), ...);
        char* to = gathered.data() + used;
        ((std::memcpy(to, texts.data(), texts.size()), to += texts.size()), ...);
        used = static_cast<std::size_t>(to - gathered.data());
    }
    void PutLong(std::string_view text);
    void Flush();
    void PutReference(char byte);

    std::string whole;
    std::array<char, 4096> gathered;
    std::size_t used = 0;
};

// The number of bytes at the front that the writer leaves as they are, also between double quotes.
std::size_t CountPlain(std::string_view text);

// Expands numeric references, decimal and (after a lower-case x) hexadecimal, to one byte each: the
// low 8 bits of the number. One more byte after the digits is consumed, the ';' as a rule. A
// reference without any digit is no reference and stands as it is, as does a '&' without '#'.
void UnescapeXML(std::string& text);

// The bytes that the reader takes for white space, whatever the locale.
inline constexpr std::string_view kXMLSpace = " \t\n\v\f\r";

// A piece of the text between two marks. Quotes mean nothing: the first '>' ends a tag.
struct XMLToken {
    enum Kind : std::int32_t {
        kText = 0,        // a run of text, white space ahead of it included
        kOpening = 1,     // <...>
        kClosing = 2,     // </...>
        kSelfClosed = 3,  // <.../>
        kComment = 4,     // <!...>
    };

    std::int32_t kind;
    std::string_view text;  // what stands between the marks, not expanded; never empty
};

// Cuts a text into tokens, one at a time and without copying, so that the text outlives the tokens.
// A NUL byte ends the text. White space that leads up to a tag makes no token, nor does an empty
// tag.
class XMLTokenizer {
  public:
    explicit XMLTokenizer(std::string_view wholeText);

    // The token at the position; none at the end of the text.
    const std::optional<XMLToken>& Current() const { return current; }

    void Step();

  private:
    XMLToken CutTag();
    XMLToken CutText();

    std::string_view rest;  // what comes after the current token
    std::optional<XMLToken> current;
};
