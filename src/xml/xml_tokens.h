#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

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
