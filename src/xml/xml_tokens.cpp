#include "xml/xml_tokens.h"

#include <cstddef>

namespace {

// Takes `count` bytes, or as many as there are, off the front.
std::string_view Take(std::string_view& text, std::size_t count) {
    const std::string_view taken = text.substr(0, count);
    text.remove_prefix(taken.size());
    return taken;
}

}  // namespace

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
