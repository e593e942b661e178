#include "xml/xml_text.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace {

constexpr std::string_view kReferenceStart = "&#";
constexpr int kNoDigit = -1;

bool StandsForItself(char byte) {
    return byte >= ' ' && byte <= '~' && byte != '&' && byte != '<';
}

int HexDigitValue(char byte) {
    if (byte >= '0' && byte <= '9') return byte - '0';
    if (byte >= 'a' && byte <= 'f') return byte - 'a' + 10;
    if (byte >= 'A' && byte <= 'F') return byte - 'A' + 10;
    return kNoDigit;
}

// The number modulo 256, which is all that is kept of it. Decimal reading takes the digits up to
// the first that is none in its base.
char ByteOf(std::string_view hexDigits, unsigned base) {
    std::uint8_t number = 0;
    for (const char digit : hexDigits) {
        const auto value = static_cast<unsigned>(HexDigitValue(digit));
        if (value >= base) break;
        number = static_cast<std::uint8_t>(number * base + value);
    }
    return static_cast<char>(number);
}

// Expands the reference that `text` starts with, and gives the number of bytes that it took.
std::size_t ExpandReference(std::string_view text, std::string& out) {
    std::size_t start = kReferenceStart.size();
    const bool isHex = start < text.size() && text[start] == 'x';
    if (isHex) ++start;
    std::size_t end = start;
    while (end < text.size() && HexDigitValue(text[end]) != kNoDigit)
        ++end;
    if (end == start) {
        out += kReferenceStart;
        return kReferenceStart.size();
    }
    out += ByteOf(text.substr(start, end - start), isHex ? 16 : 10);
    return end < text.size() ? end + 1 : end;
}

// Takes `count` bytes, or as many as there are, off the front.
std::string_view Take(std::string_view& text, std::size_t count) {
    const std::string_view taken = text.substr(0, count);
    text.remove_prefix(taken.size());
    return taken;
}

}  // namespace

void EscapeXML(std::string_view text, std::string& out) {
    for (const char byte : text) {
        if (StandsForItself(byte)) {
            out += byte;
        } else {
            out += kReferenceStart;
            out += std::to_string(static_cast<unsigned>(static_cast<unsigned char>(byte)));
            out += ';';
        }
    }
}

std::string UnescapeXML(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    while (!text.empty()) {
        const std::size_t plain = std::min(text.find(kReferenceStart), text.size());
        out += text.substr(0, plain);
        text.remove_prefix(plain);
        if (!text.empty()) text.remove_prefix(ExpandReference(text, out));
    }
    return out;
}

XMLTokenizer::XMLTokenizer(std::string_view wholeText)
    : rest(wholeText.substr(0, wholeText.find('\0'))) {
    Step();
}

void XMLTokenizer::Step() {
    current.reset();
    while (!rest.empty()) {
        const std::size_t start = rest.find_first_not_of(kXMLSpace);
        const bool isTag = start != std::string_view::npos && rest[start] == '<';
        if (isTag) rest.remove_prefix(start);
        const XMLToken token = isTag ? CutTag() : CutText();
        if (token.text.empty()) continue;
        current = token;
        return;
    }
}

XMLToken XMLTokenizer::CutTag() {
    rest.remove_prefix(1);
    XMLToken token = {XMLToken::kOpening, {}};
    if (rest.starts_with('/')) token.kind = XMLToken::kClosing;
    if (rest.starts_with('!')) token.kind = XMLToken::kComment;
    if (token.kind != XMLToken::kOpening) rest.remove_prefix(1);

    const std::size_t end = rest.find('>');
    token.text = Take(rest, end);
    Take(rest, 1);
    const bool isEnded = end != std::string_view::npos;
    if (isEnded && token.kind != XMLToken::kComment && token.text.ends_with('/')) {
        token.kind = XMLToken::kSelfClosed;
        token.text.remove_suffix(1);
    }
    return token;
}

XMLToken XMLTokenizer::CutText() {
    return {XMLToken::kText, Take(rest, rest.find('<'))};
}
