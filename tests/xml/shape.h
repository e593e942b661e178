#pragma once

#include <string>
#include <utility>

#include "tvl/xml_node.h"

// The tree as text that hides nothing: kind, name and attributes of every node, and its children.
// For trees of moderate depth.
inline std::string Shape(const XMLNode& node) {
    std::string shape = std::to_string(node.kind) + "'" + node.name + "'";
    for (const auto& [name, value] : node.attributes)
        shape += " " + name + "=" + value;
    if (node.children.empty()) return shape;
    for (const auto& child : node.children)
        shape += (child == node.children.front() ? "[" : " ") + Shape(*child);
    return shape + "]";
}

inline XMLNode Node(std::int32_t kind, std::string name) {
    XMLNode node;
    node.kind = kind;
    node.name = std::move(name);
    return node;
}

inline std::string Readable(const XMLNode& node) {
    return node.Write("\n", "\t", "");
}
