#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// The text form of a tree, as reader and writer share it: references and tokens.

// Appends the text as the writer stores it: '&', '<', and every byte that is not printable ASCII
// becomes a decimal reference such as "&#229;".
void EscapeXML(std::string_view text, std::string& out);

// Expands numeric references, decimal and (after a lower-case x) hexadecimal, to one byte each: the
// low 8 bits of the number. One more byte after the digits is consumed, the ';' as a rule. A
// reference without any digit is no reference and stands as it is, as does a '&' without '#'.
std::string UnescapeXML(std::string_view text);

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
