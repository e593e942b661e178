#include "headless/scene/child_list.h"

#include <algorithm>

namespace headless {
namespace {

std::size_t SizeOf(const ChildLink* link) {
    return link ? link->size : 0;
}

void Recount(ChildLink& link) {
    link.size = 1 + SizeOf(link.left) + SizeOf(link.right);
}

const ChildLink* First(const ChildLink* link) {
    while (link && link->left)
        link = link->left;
    return link;
}

const ChildLink* Next(const ChildLink* link) {
    if (link->right) return First(link->right);
    while (link->above && link == link->above->right)
        link = link->above;
    return link->above;
}

// Of a linear congruential generator, so that each run takes the same steps.
std::uint32_t NextPriority() {
    static std::uint64_t state = 1;
    state = state * 6364136223846793005U + 1442695040888963407U;
    return static_cast<std::uint32_t>(state >> 32U);
}

}  // namespace

SceneNode* ChildList::At(std::size_t index) const {
    const ChildLink* link = top_;
    for (std::size_t before = SizeOf(link->left); index != before; before = SizeOf(link->left)) {
        link = index < before ? link->left : link->right;
        if (index > before) index -= before + 1;
    }
    return link->node;
}

std::vector<SceneNode*> ChildList::InOrder() const {
    std::vector<SceneNode*> nodes;
    nodes.reserve(Size());
    for (const ChildLink* link = First(top_); link; link = Next(link))
        nodes.push_back(link->node);
    return nodes;
}

std::size_t ChildList::IndexOf(const ChildLink& child) {
    std::size_t index = SizeOf(child.left);
    for (const ChildLink* link = &child; link->above; link = link->above)
        if (link == link->above->right) index += 1 + SizeOf(link->above->left);
    return index;
}

void ChildList::Insert(std::size_t index, ChildLink& child) {
    child.left = child.right = child.above = nullptr;
    child.size = 1;
    child.priority = NextPriority();
    ChildLink** place = &top_;
    while (*place) {
        child.above = *place;
        ++child.above->size;
        const std::size_t before = SizeOf(child.above->left);
        place = index <= before ? &child.above->left : &child.above->right;
        if (index > before) index -= before + 1;
    }
    *place = &child;
    while (child.above && child.above->priority < child.priority)
        Raise(child);
}

void ChildList::Remove(ChildLink& child) {
    while (child.left && child.right)
        Raise(child.left->priority < child.right->priority ? *child.right : *child.left);
    ChildLink* const below = child.left ? child.left : child.right;
    PointerTo(child) = below;
    if (below) below->above = child.above;
    for (ChildLink* link = child.above; link; link = link->above)
        --link->size;
}

ChildLink*& ChildList::PointerTo(const ChildLink& child) {
    if (!child.above) return top_;
    return child.above->left == &child ? child.above->left : child.above->right;
}

// Turns `child` and what it hangs from round, the order staying.
void ChildList::Raise(ChildLink& child) {
    ChildLink& parent = *child.above;
    PointerTo(parent) = &child;
    child.above = parent.above;
    parent.above = &child;
    const bool wasLeft = parent.left == &child;
    ChildLink*& moved = wasLeft ? child.right : child.left;
    (wasLeft ? parent.left : parent.right) = moved;
    if (moved) moved->above = &parent;
    moved = &parent;
    Recount(parent);
    Recount(child);
}

}  // namespace headless
