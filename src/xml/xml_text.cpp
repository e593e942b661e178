#include "xml/xml_text.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace {

constexpr std::string_view kReferenceStart = "&#";
constexpr int kNoDigit = -1;

using Eight = std::uint64_t;  // bytes of a text

constexpr Eight Repeat(unsigned char byte) {
    return byte * 0x0101'0101'0101'0101u;
}

// Not 0 if one of the bytes is none that the writer leaves as it is everywhere. A '"' is none: it
// stands for itself in a text, but between double quotes it cannot. A mark is the highest bit of a
// byte; one that has it already is marked, so that nothing hangs on what it carries into the next.
constexpr Eight MarkUnplain(Eight bytes) {
    constexpr unsigned char kMark = 0x80;
    constexpr unsigned char kFromQuote = '"' ^ '&';  // one bit, which the '&' alone has
    const Eight isFromBlank = bytes + Repeat(kMark - ' ');
    const Eight isDelete = bytes + Repeat(kMark - 0x7F);
    const Eight isNeither = ((bytes | Repeat(kFromQuote)) ^ Repeat('&')) + Repeat(kMark - 1);
    const Eight isNoTag = (bytes ^ Repeat('<')) + Repeat(kMark - 1);
    return (bytes | isDelete | ~(isFromBlank & isNeither & isNoTag)) & Repeat(kMark);
}

constexpr auto kIsPlain = [] {
    std::array<bool, 256> isPlain{};
    for (std::size_t byte = 0; byte < isPlain.size(); ++byte)
        isPlain[byte] = MarkUnplain(Repeat(static_cast<unsigned char>(byte))) == 0;
    return isPlain;
}();

template <class Number>
Number Load(const char* bytes) {
    Number number;
    std::memcpy(&number, bytes, sizeof number);
    return number;
}

// A block at a time, of which compilers do several eights together.
template <std::size_t size>
bool AllArePlain(const char* block) {
    Eight marks = 0;
    for (std::size_t at = 0; at < size; at += sizeof(Eight))
        marks |= MarkUnplain(Load<Eight>(block + at));
    return marks == 0;
}

constexpr std::size_t kMostOfShort = 2 * sizeof(Eight);

// By the two ends of the text, which may overlap.
bool IsShortPlain(std::string_view text) {
    const char* const first = text.data();
    const char* const end = first + text.size();
    if (text.size() >= sizeof(Eight)) {
        const Eight marks = MarkUnplain(Load<Eight>(first));
        return (marks | MarkUnplain(Load<Eight>(end - sizeof(Eight)))) == 0;
    }
    using Four = std::uint32_t;
    if (text.size() >= sizeof(Four)) {
        const Eight last = Load<Four>(end - sizeof(Four));
        return MarkUnplain(last << 32 | Load<Four>(first)) == 0;
    }
    return std::all_of(first, end, [](unsigned char byte) { return kIsPlain[byte]; });
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

// Takes `count` bytes, or as many as there are, off the front.
std::string_view Take(std::string_view& text, std::size_t count) {
    const std::string_view taken = text.substr(0, count);
    text.remove_prefix(taken.size());
    return taken;
}

// Takes the reference that `text` starts with off the front. What it stands for is no longer, and
// is written to `to`, which may lie ahead of it in the same text; the result is the place behind.
char* ExpandReference(std::string_view& text, char* to) {
    std::size_t start = kReferenceStart.size();
    const bool isHex = start < text.size() && text[start] == 'x';
    if (isHex) ++start;
    std::size_t end = start;
    while (end < text.size() && HexDigitValue(text[end]) != kNoDigit)
        ++end;
    if (end == start) {
        Take(text, kReferenceStart.size());
        return std::ranges::copy(kReferenceStart, to).out;
    }
    *to = ByteOf(text.substr(start, end - start), isHex ? 16 : 10);
    Take(text, end + 1);
    return to + 1;
}

void PutReference(char byte, XMLOutput& out) {
    out.Put(kReferenceStart, std::to_string(static_cast<unsigned char>(byte)), ";");
}

}  // namespace

std::size_t CountPlain(std::string_view text) {
    if (text.size() <= kMostOfShort && IsShortPlain(text)) return text.size();
    constexpr std::size_t kLong = 64;
    constexpr std::size_t kShort = sizeof(Eight);
    std::size_t at = 0;
    while (text.size() - at >= kLong && AllArePlain<kLong>(text.data() + at))
        at += kLong;
    if (text.size() - at >= kShort) {
        // The last block overlaps with the one ahead of it.
        const std::size_t last = text.size() - kShort;
        while (AllArePlain<kShort>(text.data() + at)) {
            if (at == last) return text.size();
            at = std::min(at + kShort, last);
        }
    }
    while (at < text.size() && kIsPlain[static_cast<unsigned char>(text[at])])
        ++at;
    return at;
}

void EscapeXML(std::string_view text, XMLOutput& out) {
    while (true) {
        out.Put(Take(text, CountPlain(text)));
        if (text.empty()) return;
        if (text.front() == '"')
            out.Put("\"");
        else
            PutReference(text.front(), out);
        text.remove_prefix(1);
    }
}

// There is no room for all of it.
void XMLOutput::PutLong(std::string_view text) {
    Flush();
    last += text;
}

std::string XMLOutput::Finish() {
    Flush();
    if (full.empty()) return std::move(last);
    std::size_t size = last.size();
    for (const std::string& piece : full)
        size += piece.size();
    std::string whole;
    whole.reserve(size);
    for (const std::string& piece : full)
        whole += piece;
    whole += last;
    return whole;
}

void XMLOutput::Flush() {
    constexpr std::size_t kPieceBytes = 64 * 1024;
    if (last.size() + used > kPieceBytes) {
        full.push_back(std::exchange(last, {}));
        last.reserve(kPieceBytes);
    }
    last.append(gathered.data(), used);
    used = 0;
}

void UnescapeXML(std::string& text) {
    const std::size_t first = text.find(kReferenceStart);
    if (first == std::string::npos) return;
    char* to = text.data() + first;
    std::string_view rest = text;
    rest.remove_prefix(first);
    while (!rest.empty()) {
        to = ExpandReference(rest, to);
        const std::string_view plain = Take(rest, rest.find(kReferenceStart));
        std::memmove(to, plain.data(), plain.size());
        to += plain.size();
    }
    text.resize(static_cast<std::size_t>(to - text.data()));
}

XMLTokenizer::XMLTokenizer(std::string_view wholeText)
    : rest(wholeText.substr(0, wholeText.find('\0'))) {
    Step();
}

void XMLTokenizer::Step() {
    current.reset();
    while (!rest.empty()) {
        // Between tags there is no white space, as a rule, or little.
        const std::size_t start = rest.front() == '<' ? 0 : rest.find_first_not_of(kXMLSpace);
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
