#pragma once

#include <cctype>
#include <string>
#include <string_view>
#include <vector>

#include "tvl/xml_node.h"

// The text form of a tree as it is defined, step by step and without regard to time: the law that
// reader and writer are held to.
namespace plain {

inline bool IsSpace(char byte) {
    return byte != '\0' && std::string_view(" \t\n\v\f\r").find(byte) != std::string_view::npos;
}

inline std::string Unescape(const std::string& text) {
    std::string out;
    for (std::size_t at = 0; at < text.size();) {
        const bool isHex = text.compare(at, 3, "&#x") == 0;
        const std::size_t start = at + (isHex ? 3 : 2);
        std::size_t end = start;
        while (end < text.size() && std::isxdigit(static_cast<unsigned char>(text[end])) != 0)
            ++end;
        if (text.compare(at, 2, "&#") != 0 || end == start) {
            out += text[at++];
            continue;
        }
        unsigned number = 0;
        for (const char digit : text.substr(start, end - start)) {
            const bool isDecimal = std::isdigit(static_cast<unsigned char>(digit)) != 0;
            if (!isHex && !isDecimal) break;
            const int value = isDecimal ? digit - '0' : std::tolower(digit) - 'a' + 10;
            number = (number * (isHex ? 16 : 10) + static_cast<unsigned>(value)) % 256;
        }
        out += static_cast<char>(number);
        at = end + 1;
    }
    return out;
}

struct Token {
    int kind;  // 0 text, 1 opening, 2 closing, 3 self-closed, 4 comment
    std::string text;
};

inline std::vector<Token> Tokenize(std::string text) {
    text = text.substr(0, text.find('\0'));
    std::vector<Token> tokens;
    for (std::size_t at = 0; at < text.size();) {
        Token token = {0, {}};
        while (at < text.size() && IsSpace(text[at]))
            token.text += text[at++];
        if (at < text.size() && text[at] == '<') {
            token = {1, {}};
            if (text.compare(++at, 1, "/") == 0) token.kind = 2;
            if (text.compare(at, 1, "!") == 0) token.kind = 4;
            if (token.kind != 1) ++at;
            for (; at < text.size() && text[at] != '>'; ++at) {
                const bool endsTag = token.kind != 4 && text.compare(at, 2, "/>") == 0;
                if (endsTag) token.kind = 3;
                if (!endsTag) token.text += text[at];
            }
            ++at;
        } else {
            while (at < text.size() && text[at] != '<')
                token.text += text[at++];
        }
        if (!token.text.empty()) tokens.push_back(token);
    }
    return tokens;
}

inline std::string FirstWord(const std::string& text) {
    std::string word;
    while (word.size() < text.size() && !IsSpace(text[word.size()]))
        word += text[word.size()];
    return word;
}

inline int ParseAttributes(XMLNode& node, const std::string& tag) {
    std::size_t at = 0;
    const auto skipSpace = [&] {
        while (at < tag.size() && IsSpace(tag[at]))
            ++at;
    };
    skipSpace();
    at += FirstWord(tag.substr(at)).size();
    while (at < tag.size()) {
        skipSpace();
        if (tag.compare(at, 1, "?") == 0) return 0;
        std::string name;
        while (at < tag.size() && tag[at] != '=' && !IsSpace(tag[at]))
            name += tag[at++];
        const bool isQuoted = tag.compare(at, 2, "='") == 0 || tag.compare(at, 2, "=\"") == 0;
        const std::size_t end = isQuoted ? tag.find(tag[at + 1], at + 2) : std::string::npos;
        if (end == std::string::npos) return 5;
        node.attributes[name] = Unescape(tag.substr(at + 2, end - at - 2));
        at = end + 1;
    }
    return 0;
}

inline int ParseNode(XMLNode& node, const std::vector<Token>& tokens, std::size_t& at) {
    if (at >= tokens.size()) return 5;
    const Token& token = tokens[at];
    if (token.kind == 2) return 2;
    const bool isTag = token.kind == 1 || token.kind == 3;
    node.kind = isTag ? XMLNode::kElement : token.kind == 0 ? XMLNode::kText : XMLNode::kComment;
    node.name = Unescape(isTag ? FirstWord(token.text) : token.text);
    if (const int result = isTag ? ParseAttributes(node, token.text) : 0; result != 0)
        return result;
    ++at;
    if (token.kind != 1) return 0;
    while (at < tokens.size() && tokens[at].kind != 2) {
        XMLNode child;
        if (const int result = ParseNode(child, tokens, at); result != 0) return result;
        node.AddChild(child);
    }
    if (at >= tokens.size()) return 3;
    const std::string& closing = tokens[at++].text;
    return closing == node.name || Unescape(closing) == node.name ? 0 : 4;
}

inline int Parse(XMLNode& node, const std::string& text) {
    node.Clear();
    const std::vector<Token> tokens = Tokenize(text);
    if (tokens.empty() || (tokens[0].kind != 1 && tokens[0].kind != 3)) return 2;
    std::size_t at = tokens[0].text[0] == '?' ? 1 : 0;
    return ParseNode(node, tokens, at);
}

inline std::string Escape(const std::string& text, bool withDoubleQuotes = false) {
    std::string out;
    for (const char byte : text) {
        const bool isPlain = byte >= ' ' && byte <= '~' && byte != '&' && byte != '<';
        if (isPlain && !(withDoubleQuotes && byte == '"'))
            out += byte;
        else
            out += "&#" + std::to_string(static_cast<unsigned char>(byte)) + ';';
    }
    return out;
}

inline std::string Write(const XMLNode& node, const std::string& lineEnd, const std::string& step,
                         const std::string& indent) {
    if (node.kind == XMLNode::kText) return Escape(node.name);
    if (node.kind == XMLNode::kComment) return indent + "<!-- " + Escape(node.name) + "-- >";
    if (node.kind != XMLNode::kElement) return {};
    std::string out = indent + '<' + Escape(node.name);
    for (const auto& [name, value] : node.attributes) {
        const bool hasDouble = value.find('"') != std::string::npos;
        const bool hasBoth = hasDouble && value.find('\'') != std::string::npos;
        const std::string quote(1, hasDouble && !hasBoth ? '\'' : '"');
        out += ' ' + name + '=' + quote + Escape(value, hasBoth) + quote;
    }
    if (node.children.empty()) return out + "/>";
    const auto isText = [&](std::size_t child) {
        return child < node.children.size() && node.children[child]->kind == XMLNode::kText;
    };
    out += isText(0) ? ">" : '>' + lineEnd;
    for (std::size_t child = 0; child < node.children.size(); ++child) {
        out += Write(*node.children[child], lineEnd, step, indent + step);
        if (!isText(0)) out += lineEnd;
        if (isText(0) && isText(child) && isText(child + 1)) out += ' ';
    }
    return out + (isText(0) ? "" : indent) + "</" + Escape(node.name) + '>';
}

// Kind, name, attributes and children of every node, in a form in which no two trees are alike.
inline std::string Shape(const XMLNode& node) {
    const auto counted = [](const std::string& text) {
        return std::to_string(text.size()) + ':' + text;
    };
    std::string shape = std::to_string(node.kind) + '.' + counted(node.name) + '{';
    for (const auto& [name, value] : node.attributes)
        shape += counted(name) + '=' + counted(value);
    shape += '}';
    for (const auto& child : node.children)
        shape += Shape(*child);
    return shape + '/';
}

}  // namespace plain
