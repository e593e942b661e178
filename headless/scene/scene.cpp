#include "headless/scene/scene.h"

#include <utility>

#include "headless/control/own_controllers.h"
#include "headless/hold/graveyard.h"
#include "headless/hold/undo_stream.h"
#include "headless/scene/selection.h"

namespace headless {

void NameBook::Add(const std::string& name) {
    ++uses_[name];
}

void NameBook::Remove(const std::string& name) {
    const auto found = uses_.find(name);
    if (found != uses_.end() && --found->second == 0) uses_.erase(found);
}

void NameBook::Replace(const std::string& before, const std::string& after) {
    Remove(before);
    Add(after);
}

std::string NameBook::MakeUnique(const std::string& stem) {
    unsigned& last = lastNumber_[stem];
    for (;;) {
        ++last;
        std::string name = stem + (last < 10 ? "0" : "") + std::to_string(last);
        if (!uses_.contains(name)) return name;
    }
}

Scene& TheScene() {
    static Scene scene;
    return scene;
}

void Scene::Open() {
    if (!root_) root_ = SceneNode::New(0);
}

void Scene::Clear() {
    ForgetSelection();
    for (const auto& [handle, node] : nodes_) {
        node->Abandon();
        node->MarkLeft(true);
    }
    if (root_) root_->Abandon();
    names_ = NameBook();
    addresses_.clear();
    // What a node does on its way out can ask for others, which are not there any more.
    found_ = nullptr;
    const auto leaving = std::exchange(nodes_, {});
}

void Scene::Close() {
    Clear();
    root_.reset();
}

SceneNode* Scene::Find(std::uint32_t handle) const {
    if (found_ && foundHandle_ == handle) return found_;
    const auto found = nodes_.find(handle);
    if (found == nodes_.end()) return nullptr;
    foundHandle_ = handle;
    return found_ = found->second.get();
}

bool Scene::IsThere(const SceneNode& node) const {
    return Contains(&node) || &node == root_.get();
}

NodePtr Scene::NewNode() {
    return SceneNode::New(++lastHandle_);
}

SceneNode* Scene::CreateObjectNode(Object* object) {
    if (!object || !root_) return nullptr;
    Fresh<Object> given(object);
    const NodePtr node = NewNode();
    node->SetObject(object);
    static_cast<void>(given.release());
    const Fresh<Control> control(NewPositionRotationScale());
    node->SetTMController(control.get());
    HostString stem;
    object->InitNodeName(stem);
    node->SetName(names_.MakeUnique(stem).c_str());
    Add(node, *root_);
    return node.get();
}

void Scene::Add(const NodePtr& node, SceneNode& parent) {
    FlipPresence(node, parent.shared_from_this(), parent.Children().Size(), false);
}

void Scene::Delete(SceneNode& node) {
    if (!Contains(&node)) return;
    SceneNode& parent = *node.Parent();
    for (SceneNode* child : node.Children().InOrder())
        parent.AttachChild(child, 1);
    Deselect(node);
    FlipPresence(node.shared_from_this(), parent.shared_from_this(), node.IndexInParent(), true);
}

void Scene::FlipPresence(const NodePtr& node, const NodePtr& parent, std::size_t index,
                         bool present) {
    Undoably([this, node, parent, index, present]() mutable {
        present = !present;
        if (present)
            Enter(node, *parent, index);
        else
            Leave(*node);
    });
}

// Changes that were made while nothing was held have no record, so that a step which is undone
// after them can find its nodes elsewhere: what has left stays away, what is there stays.
void Scene::Enter(const NodePtr& node, SceneNode& parent, std::size_t index) {
    if (Contains(node.get())) return;
    try {
        nodes_.emplace(node->Handle(), node);
        addresses_.insert(node.get());
        node->MarkLeft(false);
        names_.Add(node->Name());
        node->Hang(IsThere(parent) ? parent : *root_, index);
    } catch (...) {
        addresses_.erase(node.get());
        found_ = nullptr;
        nodes_.erase(node->Handle());
        node->MarkLeft(true);
        throw;
    }
}

void Scene::Leave(SceneNode& node) {
    if (!Contains(&node)) return;
    Deselect(node);
    SceneNode& parent = *node.Parent();
    while (node.Children().Size() > 0) {
        SceneNode& child = *node.Children().At(0);
        child.Unhang();
        child.Hang(parent, parent.Children().Size());
    }
    node.Unhang();
    names_.Remove(node.Name());
    addresses_.erase(&node);
    node.MarkLeft(true);
    found_ = nullptr;
    nodes_.erase(node.Handle());
}

std::vector<SceneNode*> Scene::InOrder() const {
    std::vector<SceneNode*> order;
    if (!root_) return order;
    std::vector<SceneNode*> ahead;
    const auto putChildrenAhead = [&ahead](const SceneNode& node) {
        const std::vector<SceneNode*> children = node.Children().InOrder();
        ahead.insert(ahead.end(), children.rbegin(), children.rend());
    };
    putChildrenAhead(*root_);
    while (!ahead.empty()) {
        SceneNode* node = ahead.back();
        ahead.pop_back();
        order.push_back(node);
        putChildrenAhead(*node);
    }
    return order;
}

}  // namespace headless
