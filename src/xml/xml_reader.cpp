#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tvl/xml_node.h"
#include "xml/xml_text.h"

namespace {

// What a byte is to a reader that looks for the end of something.
struct ByteKind {
    bool isSpace;
    bool endsName;  // of an attribute
};

constexpr auto kByteKinds = [] {
    std::array<ByteKind, 256> kinds{};
    for (const char byte : kXMLSpace)
        kinds[static_cast<unsigned char>(byte)] = {true, true};
    kinds['='] = {false, true};
    return kinds;
}();

// Takes everything up to the first byte of a kind, or of another kind, off the front.
template <bool ByteKind::*kind, bool isOfKind = true>
std::string_view TakeUntil(std::string_view& text) {
    const char* end = text.data();
    const char* const textEnd = end + text.size();
    while (end != textEnd && kByteKinds[static_cast<unsigned char>(*end)].*kind != isOfKind)
        ++end;
    const std::string_view taken(text.data(), static_cast<std::size_t>(end - text.data()));
    text.remove_prefix(taken.size());
    return taken;
}

// Taken off the front.
std::string_view FirstWord(std::string_view& text) {
    return TakeUntil<&ByteKind::isSpace>(text);
}

void SkipSpace(std::string_view& text) {
    TakeUntil<&ByteKind::isSpace, false>(text);
}

// Takes `="value"`, in either kind of quote and without white space, off the front.
bool TakeAttributeValue(std::string_view& text, std::string_view& value) {
    constexpr std::size_t start = 2;
    if (text.size() < start || text[0] != '=' || (text[1] != '"' && text[1] != '\'')) return false;
    const std::size_t end = text.find(text[1], start);
    if (end == std::string_view::npos) return false;
    value = text.substr(start, end - start);
    text.remove_prefix(end + 1);
    return true;
}

// Attributes come in their order, as a rule, so that each goes behind the last one. Of those of the
// same name the last one stands.
std::string& SetAttribute(XMLNode& node, std::string_view name, std::string_view value) {
    const std::size_t known = node.attributes.size();
    const auto place = node.attributes.emplace_hint(node.attributes.end(), name, value);
    if (node.attributes.size() == known) place->second = value;
    return place->second;
}

XMLNode::ParseResult ParseXMLAttributes(XMLNode& node, std::string_view rest, bool hasReferences) {
    while (!rest.empty()) {
        SkipSpace(rest);
        if (rest.starts_with('?')) break;
        const std::string_view name = TakeUntil<&ByteKind::endsName>(rest);
        std::string_view value;
        if (!TakeAttributeValue(rest, value)) return XMLNode::kMalformed;
        std::string& stored = SetAttribute(node, name, value);
        if (hasReferences) UnescapeXML(stored);
    }
    return XMLNode::kParsed;
}

void SetText(XMLNode& node, XMLNode::Kind kind, std::string_view text) {
    node.kind = kind;
    node.name = text;
    UnescapeXML(node.name);
}

// The name is what stands ahead of the first white space, be it nothing; the attributes stand
// behind the first word.
XMLNode::ParseResult ReadXMLTag(XMLNode& node, std::string_view tagText) {
    const bool hasReferences = tagText.find('&') != std::string_view::npos;
    node.kind = XMLNode::kElement;
    node.name = FirstWord(tagText);
    if (node.name.empty()) {
        SkipSpace(tagText);
        FirstWord(tagText);
    }
    if (hasReferences) UnescapeXML(node.name);
    return ParseXMLAttributes(node, tagText, hasReferences);
}

// What one token says of a node: all of it, or of an opening tag all but the children.
XMLNode::ParseResult ReadXMLToken(XMLNode& node, const XMLToken& token) {
    switch (token.kind) {
        case XMLToken::kClosing:
            return XMLNode::kNoRoot;
        case XMLToken::kText:
            SetText(node, XMLNode::kText, token.text);
            return XMLNode::kParsed;
        case XMLToken::kComment:
            SetText(node, XMLNode::kComment, token.text);
            return XMLNode::kParsed;
        default:
            return ReadXMLTag(node, token.text);
    }
}

// The writer escapes names in closing tags too, so that one with a byte above 127 has to be
// expanded before it agrees.
bool Closes(std::string_view tagText, const std::string& name) {
    if (tagText == name) return true;
    std::string expanded(tagText);
    UnescapeXML(expanded);
    return expanded == name;
}

// Reads what is in the root. Nodes wait in the order of the text until the element that they are in
// is complete, so that the list of its children is made once and in its size.
class XMLChildrenReader {
  public:
    explicit XMLChildrenReader(XMLNode& wholeRoot) : root(wholeRoot) {}

    // From behind the root's opening tag to its closing one. An element joins its parent when it is
    // complete; one that fails, or in which something fails, does not.
    XMLNode::ParseResult Read(XMLTokenizer& tokens) {
        const XMLNode::ParseResult result = ReadTokens(tokens);
        if (!open.empty()) waiting.resize(open.front());
        Adopt(root, 0);
        return result;
    }

  private:
    XMLNode::ParseResult ReadTokens(XMLTokenizer& tokens) {
        for (; tokens.Current(); tokens.Step()) {
            const XMLToken& token = *tokens.Current();
            if (token.kind == XMLToken::kClosing) {
                const XMLNode& innermost = open.empty() ? root : *waiting[open.back()];
                if (!Closes(token.text, innermost.name)) return XMLNode::kMismatch;
                if (open.empty()) return XMLNode::kParsed;
                CloseInnermost();
                continue;
            }
            std::unique_ptr<XMLNode> node = MakeNode();
            const XMLNode::ParseResult result = ReadXMLToken(*node, token);
            if (result != XMLNode::kParsed) return result;
            if (token.kind == XMLToken::kOpening)
                open.push_back(waiting.size());
            else if (node->name.empty())
                continue;  // as AddChild takes none with neither name nor children
            waiting.push_back(std::move(node));
        }
        return XMLNode::kUnclosed;
    }

    void CloseInnermost() {
        Adopt(*waiting[open.back()], open.back() + 1);
        open.pop_back();
    }

    void Adopt(XMLNode& parent, std::size_t first) {
        const auto begin = waiting.begin() + static_cast<std::ptrdiff_t>(first);
        parent.children.assign(std::move_iterator(begin), std::move_iterator(waiting.end()));
        waiting.erase(begin, waiting.end());
    }

    // Made some at a time, so that nodes lie beside nodes and attributes beside attributes: the
    // allocator takes such memory back in half the time.
    std::unique_ptr<XMLNode> MakeNode() {
        constexpr std::size_t kMostAhead = 32;
        if (made.empty()) {
            ahead = std::min(2 * ahead, kMostAhead);
            for (std::size_t i = 0; i < ahead; ++i)
                made.push_back(std::make_unique<XMLNode>());
        }
        std::unique_ptr<XMLNode> node = std::move(made.back());
        made.pop_back();
        return node;
    }

    XMLNode& root;
    std::size_t ahead = 1;
    std::vector<std::unique_ptr<XMLNode>> made;     // ahead of time
    std::vector<std::unique_ptr<XMLNode>> waiting;  // each open element, its children behind it
    std::vector<std::size_t> open;  // where these elements stand in there, the innermost last
};

XMLNode::ParseResult ParseXMLNode(XMLNode& node, XMLTokenizer& tokens) {
    if (!tokens.Current()) return XMLNode::kMalformed;
    const XMLToken token = *tokens.Current();
    const XMLNode::ParseResult result = ReadXMLToken(node, token);
    if (result != XMLNode::kParsed || token.kind != XMLToken::kOpening) return result;
    tokens.Step();
    return XMLChildrenReader(node).Read(tokens);
}

XMLNode::ParseResult ParseXMLDocument(XMLNode& root, std::string_view text) {
    XMLTokenizer tokens(text);
    const std::optional<XMLToken> first = tokens.Current();
    if (!first) return XMLNode::kNoRoot;
    const bool isTag = first->kind == XMLToken::kOpening || first->kind == XMLToken::kSelfClosed;
    if (!isTag) return XMLNode::kNoRoot;
    const bool isDeclaration = first->text.starts_with('?');
    if (isDeclaration) tokens.Step();
    return ParseXMLNode(root, tokens);
}

}  // namespace

std::int32_t XMLNode::Parse(std::string_view text) {
    // The text may be a part of this node, which therefore goes only when it has been read.
    XMLNode root;
    root.kind = kind;
    const ParseResult result = ParseXMLDocument(root, text);
    Swap(root);
    return result;
}
