#include "tvl/xml_node.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <utility>

namespace {

// Destroys a tree one node at a time, in no memory of its own: while a node is being emptied, the
// place of its last child holds the node's parent.
void DestroyTree(std::unique_ptr<XMLNode> node) noexcept {
    std::unique_ptr<XMLNode> parent;
    while (node) {
        if (!node->children.empty()) {
            std::unique_ptr<XMLNode> child =
                std::exchange(node->children.back(), std::move(parent));
            parent = std::exchange(node, std::move(child));
            continue;
        }
        node = std::move(parent);
        if (!node) return;
        parent = std::move(node->children.back());
        node->children.pop_back();
    }
}

void DestroyBelow(XMLNode& root) noexcept {
    while (!root.children.empty()) {
        DestroyTree(std::move(root.children.back()));
        root.children.pop_back();
    }
}

struct CopyStep {
    const XMLNode* source;
    XMLNode* target;
};

// Copies one node, and notes down which of its children are still to be copied: the first is on
// top, so that a copy lies in memory in the order of its walks.
void CopyNode(CopyStep step, std::vector<CopyStep>& pending) {
    step.target->attributes = step.source->attributes;
    step.target->name = step.source->name;
    step.target->kind = step.source->kind;
    step.target->children.reserve(step.source->children.size());
    const auto known = static_cast<std::ptrdiff_t>(pending.size());
    for (const auto& child : step.source->children) {
        step.target->children.push_back(std::make_unique<XMLNode>());
        pending.push_back({child.get(), step.target->children.back().get()});
    }
    std::reverse(pending.begin() + known, pending.end());
}

void CopyTree(const XMLNode& source, XMLNode& target) {
    std::vector<CopyStep> pending = {{&source, &target}};
    while (!pending.empty()) {
        const CopyStep step = pending.back();
        pending.pop_back();
        CopyNode(step, pending);
    }
}

bool IsSameButForChildren(const XMLNode& left, const XMLNode& right) {
    return left.kind == right.kind && left.name == right.name &&
           left.attributes == right.attributes;
}

XMLNode* FindChild(const XMLNode& node, std::int32_t index) {
    if (index < 0 || static_cast<std::size_t>(index) >= node.children.size()) return nullptr;
    return node.children[static_cast<std::size_t>(index)].get();
}

XMLNode* FindChild(const XMLNode& node, std::string_view name, std::int32_t occurrence) {
    if (occurrence < 0) return nullptr;
    std::int32_t left = occurrence;
    for (const auto& child : node.children) {
        if (child->name == name && left-- == 0) return child.get();
    }
    return nullptr;
}

XMLNode& Emptied(XMLNode& shared) {
    shared.Clear();
    shared.kind = XMLNode::kUnset;
    return shared;
}

XMLNode& NoChildAtIndex() {
    static XMLNode shared;
    return Emptied(shared);
}

XMLNode& NoChildOfName() {
    static XMLNode shared;
    return Emptied(shared);
}

}  // namespace

XMLNode::XMLNode(std::string_view text) {
    Parse(text);
}

XMLNode::XMLNode(std::string_view elementName, std::string_view value)
    : name(elementName), kind(kElement) {
    auto text = std::make_unique<XMLNode>();
    text->kind = kText;
    text->name = value;
    AddChild(std::move(text));
}

XMLNode::XMLNode(std::string_view elementName, std::uint32_t value)
    : XMLNode(elementName, std::to_string(value)) {}

// Delegates, so that what was copied until memory ran out goes one node at a time as well.
XMLNode::XMLNode(const XMLNode& other) : XMLNode() {
    CopyTree(other, *this);
}

XMLNode& XMLNode::operator=(XMLNode other) noexcept {
    Swap(other);
    return *this;
}

XMLNode::~XMLNode() {
    DestroyBelow(*this);
}

void XMLNode::Clear() {
    attributes.clear();
    name.clear();
    DestroyBelow(*this);
}

XMLNode& XMLNode::AddChild(const XMLNode& node) {
    return AddChild(std::make_unique<XMLNode>(node));
}

XMLNode& XMLNode::AddChild(std::unique_ptr<XMLNode> node) {
    if (node->name.empty() && node->children.empty()) return *this;
    children.push_back(std::move(node));
    return *children.back();
}

bool XMLNode::RemoveChild(const XMLNode& node) {
    const auto found = std::ranges::find_if(
        children, [&](const auto& child) { return IsSameButForChildren(*child, node); });
    if (found == children.end()) return false;
    children.erase(found);
    return true;
}

XMLNode& XMLNode::Child(std::int32_t index) {
    XMLNode* const child = FindChild(*this, index);
    return child != nullptr ? *child : NoChildAtIndex();
}

const XMLNode& XMLNode::Child(std::int32_t index) const {
    const XMLNode* const child = FindChild(*this, index);
    return child != nullptr ? *child : NoChildAtIndex();
}

XMLNode& XMLNode::Child(std::string_view childName, std::int32_t occurrence) {
    XMLNode* const child = FindChild(*this, childName, occurrence);
    return child != nullptr ? *child : NoChildOfName();
}

const XMLNode& XMLNode::Child(std::string_view childName, std::int32_t occurrence) const {
    const XMLNode* const child = FindChild(*this, childName, occurrence);
    return child != nullptr ? *child : NoChildOfName();
}

std::int32_t XMLNode::Count(std::string_view childName) const {
    return static_cast<std::int32_t>(std::ranges::count_if(
        children, [&](const auto& child) { return child->name == childName; }));
}

const std::string& XMLNode::Text() const {
    static const std::string noText;
    const auto found =
        std::ranges::find_if(children, [](const auto& child) { return child->kind == kText; });
    return found != children.end() ? (*found)->name : noText;
}

void XMLNode::Swap(XMLNode& other) noexcept {
    attributes.swap(other.attributes);
    children.swap(other.children);
    name.swap(other.name);
    std::swap(kind, other.kind);
}
