#pragma once

#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The text form of a tree, as reader and writer share it: references and tokens.

// Copies a text, a short one without a call: by its two ends, which may overlap. The result is the
// place behind.
inline char* CopyText(char* to, std::string_view text) {
    const std::size_t size = text.size();
    const auto copyEnds = [&](auto block) {
        const std::size_t last = size - sizeof block;
        std::memcpy(to, text.data(), sizeof block);
        std::memcpy(to + last, text.data() + last, sizeof block);
    };
    if (size > 2 * sizeof(std::uint64_t))
        std::memcpy(to, text.data(), size);
    else if (size >= sizeof(std::uint64_t))
        copyEnds(std::uint64_t{});
    else if (size >= sizeof(std::uint32_t))
        copyEnds(std::uint32_t{});
    else
        for (std::size_t i = 0; i < size; ++i)
            to[i] = text[i];
    return to + size;
}

// Text on its way to becoming a string. What is short is gathered in a buffer that stays in the
// nearest cache. A long text is kept in pieces to its end, since a string that grows is copied each
// time, into memory that the system has to clear first.
class XMLOutput {
  public:
    void Put(const std::convertible_to<std::string_view> auto&... texts) {
        PutPieces(std::string_view(texts)...);
    }

    // All that was put; nothing is put after it.
    std::string Finish();

  private:
    template <class... Texts>
    void PutPieces(Texts... texts) {
        if ((texts.size() + ...) > gathered.size() - used) return (PutLong(texts), ...);
        char* to = gathered.data() + used;
        ((to = CopyText(to, texts)), ...);
        used = static_cast<std::size_t>(to - gathered.data());
    }
    void PutLong(std::string_view text);
    void Flush();

    std::vector<std::string> full;  // the pieces ahead of the last one
    std::string last;
    std::array<char, 4096> gathered;
    std::size_t used = 0;
};

// Puts the text as the writer stores it: '&', '<', and every byte that is not printable ASCII
// becomes a decimal reference such as "&#229;".
void EscapeXML(std::string_view text, XMLOutput& out);

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
