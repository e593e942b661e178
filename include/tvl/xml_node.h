#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

// The tree in which state and descriptions cross the boundary, and its text form. A plain value:
// an object is one node and owns its subtree, and a copy is always a deep one. Strings are bytes
// without any encoding. Depth and breadth are limited by memory alone, and every operation takes
// time linear in what it touches.
//
//     XMLNode state("");
//     state.kind = XMLNode::kElement;
//     state.name = "take";
//     state.attributes["start"] = "0";
//     state.AddChild(XMLNode("title", "Walk"));
//     state.Write();                 // <take start="0"><title>Walk</title></take>
//     state.Child("title").Text();   // Walk
//
// What Write makes of a tree, Parse brings back as the same tree if names of elements and
// attributes are not empty, hold no white space and none of = / > < & and start with neither ? nor
// !, values of attributes hold no '>' (the reader ends a tag at the first one), and a text is its
// element's only child and more than blanks; names of attributes hold no NUL. A comment comes back
// with its marks in its text, and longer each time. This is no conforming XML: there are no named
// entities and no CDATA sections, a declaration is allowed as the very first thing only, and a
// blank before the end of a tag is an error. The order of the four data members is part of the
// contract.
class XMLNode {
  public:
    enum Kind : std::int32_t {
        kUnset = 0,  // until it is assigned; written, like any value not listed, as nothing
        kElement = 1,
        kText = 2,
        kComment = 4,  // or anything else that is read from a tag that opens with "<!"
    };

    // Results of Parse.
    enum ParseResult : std::int32_t {
        kParsed = 0,
        kNoRoot = 2,     // no tag, text or a comment before the root, or a closing tag for a node
        kUnclosed = 3,   // the text ends inside an element
        kMismatch = 4,   // a closing tag does not close the element that is open
        kMalformed = 5,  // bad attributes, or nothing after the declaration
    };

    XMLNode() = default;

    // Parses the text and keeps whatever was read before a failure. The empty text gives an empty
    // node whose kind its maker sets.
    explicit XMLNode(std::string_view text);

    // An element that holds a text; an empty value gives no child.
    XMLNode(std::string_view elementName, std::string_view value);
    XMLNode(std::string_view elementName, std::uint32_t value);  // in decimal

    // Copies are made before anything is given up, so a node may be assigned from any part of
    // itself and to any part of itself.
    XMLNode(const XMLNode& other);
    XMLNode& operator=(XMLNode other) noexcept;
    ~XMLNode();

    // Replaces this node by the root of the text. Ends at a NUL byte. On a failure the node keeps
    // the name, the kind, the attributes before the bad one and the children that were complete.
    std::int32_t Parse(std::string_view text);

    // Readable with "\n" and "\t", compact with nothing. In the readable form the lines' indents
    // are part of the text: a chain of n elements takes n * n / 2 tabs.
    std::string Write(std::string lineEnd = {}, std::string indentStep = {},
                      std::string indent = {}) const;

    // Empties everything but `kind`.
    void Clear();

    // Appends a deep copy and returns it. A node with neither name nor children is not appended,
    // and the result is this node.
    XMLNode& AddChild(const XMLNode& node);

    // The same without a copy. The node is not null.
    XMLNode& AddChild(std::unique_ptr<XMLNode> node);

    // Deletes the first child of the same kind, name and attributes, whatever its children.
    bool RemoveChild(const XMLNode& node);

    // A child that is missing is an empty node that all misses share: it reads as empty at each
    // lookup and is not for writing. Names are compared with the `name` of children of every kind.
    XMLNode& Child(std::int32_t index);
    const XMLNode& Child(std::int32_t index) const;
    XMLNode& Child(std::string_view childName, std::int32_t occurrence = 0);
    const XMLNode& Child(std::string_view childName, std::int32_t occurrence = 0) const;
    std::int32_t Count(std::string_view childName) const;

    // The first text among the children, else the empty string.
    const std::string& Text() const;

    void Swap(XMLNode& other) noexcept;

    std::map<std::string, std::string> attributes;   // an element's, in ascending order of bytes
    std::vector<std::unique_ptr<XMLNode>> children;  // an element's, none of them null
    std::string name;            // an element's tag name; a text's or a comment's text
    std::int32_t kind = kUnset;  // a Kind
};
