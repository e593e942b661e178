#include <algorithm>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tvl/xml_node.h"
#include "xml/xml_text.h"

namespace {

std::string_view FirstWord(std::string_view text) {
    return text.substr(0, text.find_first_of(kXMLSpace));
}

void SkipSpace(std::string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of(kXMLSpace), text.size()));
}

// Takes everything up to '=' or white space off the front.
std::string_view TakeAttributeName(std::string_view& text) {
    // One pass for both ends: to look for white space alone would go through the whole tag for each
    // of the attributes in a run without any.
    const auto end = std::ranges::find_if(text, [](char byte) {
        return byte == '=' || kXMLSpace.find(byte) != std::string_view::npos;
    });
    const std::string_view name(text.begin(), end);
    text.remove_prefix(name.size());
    return name;
}

// Takes `="value"`, in either kind of quote and without white space, off the front.
bool TakeAttributeValue(std::string_view& text, std::string_view& value) {
    constexpr std::size_t start = 2;
    if (!text.starts_with("=\"") && !text.starts_with("='")) return false;
    const std::size_t end = text.find(text[1], start);
    if (end == std::string_view::npos) return false;
    value = text.substr(start, end - start);
    text.remove_prefix(end + 1);
    return true;
}

XMLNode::ParseResult ParseXMLAttributes(XMLNode& node, std::string_view tagText) {
    std::string_view rest = tagText;
    SkipSpace(rest);
    rest.remove_prefix(FirstWord(rest).size());
    while (!rest.empty()) {
        SkipSpace(rest);
        if (rest.starts_with('?')) break;
        const std::string_view name = TakeAttributeName(rest);
        std::string_view value;
        if (!TakeAttributeValue(rest, value)) return XMLNode::kMalformed;
        node.attributes[std::string(name)] = UnescapeXML(value);
    }
    return XMLNode::kParsed;
}

// What one token says of a node: all of it, or of an opening tag all but the children.
XMLNode::ParseResult ReadXMLToken(XMLNode& node, const XMLToken& token) {
    switch (token.kind) {
        case XMLToken::kClosing:
            return XMLNode::kNoRoot;
        case XMLToken::kText:
            node.kind = XMLNode::kText;
            node.name = UnescapeXML(token.text);
            return XMLNode::kParsed;
        case XMLToken::kComment:
            node.kind = XMLNode::kComment;
            node.name = UnescapeXML(token.text);
            return XMLNode::kParsed;
        default:
            node.kind = XMLNode::kElement;
            node.name = UnescapeXML(FirstWord(token.text));
            return ParseXMLAttributes(node, token.text);
    }
}

// The writer escapes names in closing tags too, so that one with a byte above 127 has to be
// expanded before it agrees.
bool Closes(std::string_view tagText, const std::string& name) {
    return tagText == name || UnescapeXML(tagText) == name;
}

// Reads from behind the root's opening tag to its closing one. An element joins its parent when it
// is complete; one that fails, or in which something fails, does not.
XMLNode::ParseResult ParseXMLChildren(XMLNode& root, XMLTokenizer& tokens) {
    std::vector<std::unique_ptr<XMLNode>> open;  // inside the root, the innermost last
    const auto innermost = [&]() -> XMLNode& { return open.empty() ? root : *open.back(); };
    for (; tokens.Current(); tokens.Step()) {
        const XMLToken& token = *tokens.Current();
        if (token.kind == XMLToken::kClosing) {
            if (!Closes(token.text, innermost().name)) return XMLNode::kMismatch;
            if (open.empty()) return XMLNode::kParsed;
            std::unique_ptr<XMLNode> complete = std::move(open.back());
            open.pop_back();
            innermost().AddChild(std::move(complete));
            continue;
        }
        auto node = std::make_unique<XMLNode>();
        const XMLNode::ParseResult result = ReadXMLToken(*node, token);
        if (result != XMLNode::kParsed) return result;
        if (token.kind == XMLToken::kOpening) {
            open.push_back(std::move(node));
        } else {
            innermost().AddChild(std::move(node));
        }
    }
    return XMLNode::kUnclosed;
}

XMLNode::ParseResult ParseXMLNode(XMLNode& node, XMLTokenizer& tokens) {
    if (!tokens.Current()) return XMLNode::kMalformed;
    const XMLToken token = *tokens.Current();
    const XMLNode::ParseResult result = ReadXMLToken(node, token);
    if (result != XMLNode::kParsed || token.kind != XMLToken::kOpening) return result;
    tokens.Step();
    return ParseXMLChildren(node, tokens);
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
