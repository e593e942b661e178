#include "recorder/proxies/nodes.h"

namespace recorder {

NodeProxy* Nodes::Await(NodeListener* ofCore) noexcept try {
    const std::lock_guard lock(mutex_);
    NodeProxy& proxy = alive_.emplace_back(*this, ofCore);
    proxy.self_ = std::prev(alive_.end());
    return &proxy;
} catch (...) {
    return nullptr;
}

// A node of which nothing was heard since another one came to its address has died in silence, as
// those do that undo records hold. One that ended here and is heard of again had not. What there is
// no memory for is not known of it.
void Nodes::Bind(NodeProxy& proxy, CNode* real) noexcept try {
    NodeProxy* before = nullptr;
    proxy.real_ = static_cast<CoreNode*>(real);
    proxy.name = real->GetNodeName();
    proxy.isSnapshot_ = real->IsSnapshot();
    {
        const std::lock_guard lock(mutex_);
        proxy.isEnded_ = false;
        if (std::exchange(proxy.isKept_, false)) alive_.splice(alive_.end(), ended_, proxy.self_);
        const auto place = byReal_.find(real);
        if (place != byReal_.end()) before = place->second;
        if (!proxy.isSnapshot_) byReal_[real] = &proxy;
    }
    if (before && before != &proxy) End(*before);
} catch (...) {
}

NodeProxy* Nodes::New(CNode* made) {
    if (!made) return nullptr;
    NodeProxy* const proxy = Await(nullptr);
    if (!proxy) {
        static_cast<CoreNode*>(made)->Destroy();
        return nullptr;
    }
    FinishCreation(*proxy, made);
    if (proxy->isSnapshot_) {
        CoreNode* const source = proxy->real_->*&NodeProxy::source;
        if (source) proxy->sourceOwner_ = source->*&NodeProxy::owner;
    }
    return proxy;
}

std::vector<CNode*> Nodes::New(std::vector<CNode*> made) {
    for (CNode*& node : made)
        node = New(node);
    return made;
}

std::vector<CNode*> Nodes::Known(std::vector<CNode*> given) {
    for (CNode*& node : given)
        node = Known(node);
    return given;
}

NodeProxy* Nodes::Known(CNode* given) {
    if (!given) return nullptr;
    {
        const std::lock_guard lock(mutex_);
        const auto known = byReal_.find(given);
        if (known != byReal_.end()) return known->second;
    }
    NodeProxy* const proxy = New(given);
    if (proxy) given->SetListener(proxy->Ear());
    return proxy;
}

// A listener may have ended the node, or unclaimed it.
void Nodes::FinishCreation(NodeProxy& proxy, CNode* made) noexcept {
    if (!made) {
        if (!proxy.isSnapshot_) End(proxy);
        return;
    }
    if (proxy.real_ != made) {
        Bind(proxy, made);
        proxy.isListed_ = !proxy.isSnapshot_;
    }
    Tell(proxy);
}

// Told again only if something has become another.
void Nodes::Tell(NodeProxy& proxy) noexcept {
    std::string hostName;
    try {
        hostName = proxy.real_->GetName();
    } catch (...) {
    }
    const ObjectId owner = owners_.IdOf(proxy.real_->*&NodeProxy::owner);
    {
        const std::lock_guard lock(mutex_);
        if (proxy.isTold_ && proxy.hostName_ == hostName) return;
        proxy.isTold_ = true;
        proxy.hostName_.swap(hostName);
        proxy.ownerId_ = owner;
    }
    scribe_.Know(proxy.id_, FactsOf(proxy));
}

// Snapshots that are out outlive their node, and with them their proxies.
void Nodes::End(NodeProxy& proxy) {
    const std::lock_guard lock(mutex_);
    if (std::exchange(proxy.isEnded_, true)) return;
    const auto place = byReal_.find(proxy.real_);
    if (place != byReal_.end() && place->second == &proxy) byReal_.erase(place);
    proxy.real_ = nullptr;
    bool isLent = false;
    proxy.ForEachSnapshot([&](auto& snapshot) {
        isLent |= snapshot.IsOut();
        snapshot.LoseNode();
    });
    if (!isLent) Keep(proxy);
}

// One that ended within the outermost call that is being made may be in the midst of a call.
void Nodes::Keep(NodeProxy& proxy) {
    proxy.isKept_ = true;
    proxy.keptSince_ = scribe_.Rests();
    ended_.splice(ended_.end(), alive_, proxy.self_);
    while (ended_.size() > kKept && ended_.front().keptSince_ != proxy.keptSince_)
        ended_.pop_front();
}

void Nodes::Unlist(NodeProxy& proxy) {
    const std::lock_guard lock(mutex_);
    if (std::exchange(proxy.isSnapshot_, true)) return;
    proxy.isListed_ = false;
    proxy.ownerId_ = 0;
    byReal_.erase(proxy.real_);
}

void Nodes::LetGo() {
    const std::lock_guard lock(mutex_);
    byReal_.clear();
    for (NodeProxy& proxy : alive_) {
        proxy.real_ = nullptr;
        proxy.ForEachSnapshot([](auto& snapshot) { snapshot.LoseAll(); });
    }
}

// The stream may ask for objects meanwhile, so the nodes are not locked then.
void Nodes::TellListeners() noexcept try {
    std::vector<std::pair<ObjectId, NodeListener*>> changed;
    {
        const std::lock_guard lock(mutex_);
        for (NodeProxy& proxy : alive_) {
            const bool isReal = proxy.isTold_ && !proxy.isSnapshot_ && !proxy.isEnded_;
            if (!isReal || proxy.listener == proxy.toldListener_) continue;
            changed.emplace_back(proxy.id_, proxy.listener);
            proxy.toldListener_ = proxy.listener;
        }
    }
    for (const auto& [node, listener] : changed) {
        const ObjectId id = scribe_.IdOf(ObjectKind::kListener, listener);
        scribe_.Know(id != 0 ? id : kNoListener, {.of = node});
    }
} catch (...) {  // no memory: the watch goes by what was told before
}

ObjectFacts Nodes::FactsOf(const NodeProxy& proxy) const {
    return {.of = proxy.ownerId_,
            .name = proxy.name,
            .hostName = proxy.hostName_,
            .isSnapshot = proxy.isSnapshot_};
}

void Nodes::TellObjects(const TapeWriter::TellObject& tell) const {
    const std::lock_guard lock(mutex_);
    for (const NodeProxy& proxy : alive_) {
        if (proxy.isTold_ && !proxy.isEnded_) tell(proxy.id_, FactsOf(proxy));
        proxy.ForEachSnapshot([&](const auto& snapshot) {
            if (!snapshot.IsOut()) return;
            tell(snapshot.Id(), {.of = proxy.id_, .seconds = snapshot.Seconds()});
        });
    }
}

}  // namespace recorder
