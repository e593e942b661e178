#include "recorder/proxies/messages.h"

#include <algorithm>

namespace recorder {

using TVL::Util::Message;

// Its own lists hold the links of the node that it stands for to those of the side on which it is
// met. They are made and ended by the operations of MessageNode itself; whoever calls those of the
// proxy asks the node.
class MessageProxy final : public MessageNode {
  public:
    MessageProxy(MessageNet& net, MessageNode& real, ObjectKind kind)
        : MessageNode(real.GetName()),
          net_(&net),
          real_(&real),
          id_(net.scribe_.NewId(kind)),
          name_(MessageNode::GetName()) {}

    ObjectId Id() const { return id_; }
    MessageNode* Behind() const { return real_; }
    bool IsLinked() const { return GetListenerCount() + GetListeningCount() > 0; }

    // The real node dies, or the Core has left: nothing goes across any more.
    void TakeLeave() { hasLeft_ = true; }
    bool HasLeft() const { return hasLeft_; }
    void LoseNet() { net_ = nullptr; }
    ObjectFacts Facts() const { return {.name = name_}; }

    void Receive(Message* message, bool isBroadcast) override;
    std::int32_t Send(MessageNode* target, Message* message) override;
    void Broadcast(Message* message) override;
    std::int32_t Listen(MessageNode* node) override {
        return hasLeft_ ? MessageNode::Listen(node) : real_->Listen(Across(node));
    }
    std::int32_t StopListening(MessageNode* node) override {
        return hasLeft_ ? MessageNode::StopListening(node)
                        : real_->StopListening(Across(node, Message::kStoppedListening));
    }

  private:
    // Of the nodes of the side where this one is met.
    ObjectKind OtherKind() const {
        return KindOf(id_) == ObjectKind::kCoreMessageNode ? ObjectKind::kAdaptorMessageNode
                                                           : ObjectKind::kCoreMessageNode;
    }
    MessageNode* Across(MessageNode* node, std::int32_t messageId = Message::kListening) const {
        return net_->Across(node, OtherKind(), messageId);
    }

    void PassOn(Message& message, bool isBroadcast, MessageProxy* sender);

    MessageNet* net_;
    MessageNode* real_;
    ObjectId id_;
    std::string name_;  // as it is told
    bool hasLeft_ = false;
};

// A node of this side has sent it, or somebody who names none. The one behind gets it from the
// sender's proxy there.
void MessageProxy::Receive(Message* message, bool isBroadcast) {
    if (!message || !net_) return;
    MessageNode* const node = message->sender;
    auto* const sender = node ? net_->Proxy(*node, OtherKind(), message->id) : nullptr;
    if (node && !sender) return;
    net_->scribe_.Record<Operation::MessageNode_Receive>(
        id_, [&] { PassOn(*message, isBroadcast, sender); }, sender, message->id, message->text,
        message->wParam, isBroadcast);
}

// What is said of a link goes with the link that is made or ended there.
void MessageProxy::PassOn(Message& message, bool isBroadcast, MessageProxy* sender) {
    MessageNode* const node = message.sender;
    const bool isLinked = sender && sender->MessageNode::IsListeningTo(real_);
    if (message.id == Message::kListening && node && IsListener(node) && !isLinked) {
        sender->MessageNode::Listen(real_);
        return;
    }
    if (message.id == Message::kStoppedListening && isLinked) {
        sender->MessageNode::StopListening(real_);
        return;
    }
    if (hasLeft_) return;
    void* const parameter = message.lParam;
    const AtEnd putBack([&] {
        message.sender = node;
        message.lParam = parameter;
        if (message.id == Message::kStopBroadcasting && isBroadcast && sender) sender->TakeLeave();
    });
    message.sender = sender;
    if (node && parameter == node) message.lParam = sender;
    real_->Receive(&message, isBroadcast);
}

// A link's own messages are those of this end of it.
std::int32_t MessageProxy::Send(MessageNode* target, Message* message) {
    const bool isOfLink = message && (message->id == Message::kListening ||
                                      message->id == Message::kStoppedListening);
    if (hasLeft_ || isOfLink) return MessageNode::Send(target, message);
    const std::int32_t status = real_->Send(Across(target), message);
    if (status == 0) message->sender = this;
    return status;
}

void MessageProxy::Broadcast(Message* message) {
    if (hasLeft_) return MessageNode::Broadcast(message);
    real_->Broadcast(message);
    if (message) message->sender = this;
}

// The net -----------------------------------------------------------------------------------------

namespace {

// Proxies that a Core has left linked to nodes of its own, which may be gone, or not.
std::vector<std::unique_ptr<MessageProxy>>& LeftLinked() {
    static auto& left = *new std::vector<std::unique_ptr<MessageProxy>>;
    return left;
}

}  // namespace

MessageNet::MessageNet(Scribe& scribe) : scribe_(scribe) {}

MessageNet::~MessageNet() {
    for (std::unique_ptr<MessageProxy>& proxy : proxies_) {
        proxy->TakeLeave();
        proxy->LoseNet();
        if (proxy->IsLinked()) LeftLinked().push_back(std::move(proxy));
    }
}

MessageNode* MessageNet::Across(MessageNode* node, ObjectKind kind, std::int32_t messageId) {
    if (!node) return nullptr;
    {
        const std::lock_guard lock(mutex_);
        for (const auto& proxy : proxies_)
            if (proxy.get() == node) return proxy->Behind();
    }
    return Proxy(*node, kind, messageId);
}

// A node that has taken its leave says so to others and ends its links yet; whoever listens, or is
// given, at its address is another one.
MessageProxy* MessageNet::Proxy(MessageNode& node, ObjectKind kind, std::int32_t messageId) try {
    {
        const std::lock_guard lock(mutex_);
        const auto known = std::ranges::find(proxies_.rbegin(), proxies_.rend(), &node,
                                             [](const auto& proxy) { return proxy->Behind(); });
        if (known != proxies_.rend() && (!(*known)->HasLeft() || messageId != Message::kListening))
            return known->get();
    }
    auto made = std::make_unique<MessageProxy>(*this, node, kind);  // it asks for the name
    MessageProxy* const proxy = made.get();
    {
        const std::lock_guard lock(mutex_);
        proxies_.push_back(std::move(made));
    }
    scribe_.Know(proxy->Id(), proxy->Facts());
    return proxy;
} catch (...) {
    return nullptr;
}

ObjectId MessageNet::IdOf(const MessageNode* node) const {
    const std::lock_guard lock(mutex_);
    for (auto at = proxies_.rbegin(); at != proxies_.rend(); ++at)
        if (at->get() == node || (*at)->Behind() == node) return (*at)->Id();
    return 0;
}

void MessageNet::TellObjects(const TapeWriter::TellObject& tell) const {
    const std::lock_guard lock(mutex_);
    for (const auto& proxy : proxies_)
        if (!proxy->HasLeft()) tell(proxy->Id(), proxy->Facts());
}

}  // namespace recorder
