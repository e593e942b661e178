#include "tvl/message.h"

#include <algorithm>
#include <cstddef>
#include <exception>
#include <locale>
#include <sstream>
#include <utility>

#include "foundation/thrown.h"
#include "tvl/error_code.h"
#include "tvl/log.h"

namespace TVL::Util {
namespace {

constexpr Failure kLinkMismatch = {"MESSAGE_LINKMISMATCH",
                                   "The MessageNode network contains a link mismatch.",
                                   ErrorCode::kCritical};
constexpr Failure kNotListening = {"MESSAGE_NOT_LISTENING",
                                   "This node is not listening to the specified node.",
                                   ErrorCode::kNotice};

// Nobody here declares it, so the answer is "not found" unless a placed registry knows the code.
constexpr const char* kNullNode = "NULL";

bool IsTrafficLogged() {
    return Log::GetInstance()->IsLevelActive(Log::kTraffic);
}

void LogTraffic(const std::string& event, const Message& message) {
    std::ostringstream line;
    line.imbue(std::locale::classic());
    line << event << '"' << message.text << "\" (wParam=" << message.wParam
         << ", lParam=" << message.lParam << ')';
    Log(Log::kTraffic).Write(line.str());
}

bool Contains(const std::vector<MessageNode*>& nodes, const MessageNode* node) {
    return std::ranges::find(nodes, node) != nodes.end();
}

MessageNode* At(const std::vector<MessageNode*>& nodes, std::int32_t index) {
    if (index < 0 || static_cast<std::size_t>(index) >= nodes.size()) return nullptr;
    return nodes[static_cast<std::size_t>(index)];
}

}  // namespace

Message::Message(std::int32_t messageId, std::string messageText, std::int32_t firstParameter,
                 void* secondParameter)
    : id(messageId),
      text(std::move(messageText)),
      wParam(firstParameter),
      lParam(secondParameter) {}

std::int32_t MessageNode::Send(MessageNode* target, Message* message) {
    if (target == nullptr || message == nullptr) return ValueOf(kNullNode);
    message->sender = this;
    if (IsTrafficLogged()) {
        LogTraffic(GetName() + " is sending message to " + target->GetName() + ": ", *message);
    }
    target->Receive(message, false);
    return 0;
}

void MessageNode::Broadcast(Message* message) {
    if (message == nullptr) return;
    message->sender = this;
    if (IsTrafficLogged()) LogTraffic(GetName() + " is broadcasting message: ", *message);
    std::exception_ptr thrown;
    for (std::size_t index = listeners.size(); index-- > 0;) {
        if (index >= listeners.size()) continue;
        try {
            listeners[index]->Receive(message, true);
        } catch (...) {
            if (!thrown) thrown = std::current_exception();
        }
    }
    if (thrown) std::rethrow_exception(thrown);
}

std::int32_t MessageNode::Listen(MessageNode* node) {
    if (node == nullptr || Contains(listeningTo, node)) return 0;
    if (Contains(node->listeners, this)) return Report(kLinkMismatch);
    listeningTo.push_back(node);
    try {
        node->listeners.push_back(this);
    } catch (...) {
        listeningTo.pop_back();
        throw;
    }
    Tell(node, Message::kListening, " is now listening to ");
    return 0;
}

std::int32_t MessageNode::StopListening(MessageNode* node) {
    if (node == nullptr) return ValueOf(kNullNode);
    if (!Contains(listeningTo, node)) return Report(kNotListening);
    if (!Contains(node->listeners, this)) return ValueOf(kLinkMismatch.identifier);
    // The receiver may have ended the link itself, even by its own end.
    const auto endLink = [&] {
        if (Contains(listeningTo, node)) Unlink(this, node);
    };
    try {
        Tell(node, Message::kStoppedListening, " has stopped listening to ");
    } catch (...) {
        endLink();
        throw;
    }
    endLink();
    return 0;
}

MessageNode* MessageNode::GetListeningTo(std::int32_t index) const {
    return At(listeningTo, index);
}

MessageNode* MessageNode::GetListener(std::int32_t index) const {
    return At(listeners, index);
}

bool MessageNode::IsListener(const MessageNode* node) const {
    return Contains(listeners, node);
}

bool MessageNode::IsListeningTo(const MessageNode* node) const {
    return Contains(listeningTo, node);
}

MessageNode::~MessageNode() {
    TraceIfThrown("Receive", [this] {
        Message farewell(Message::kStopBroadcasting, "Stop broadcasting", 0, this);
        MessageNode::Broadcast(&farewell);
    });
    // A link whose other side refuses to end it is cut, and so is one that a receiver makes anew:
    // a node takes its leave of each link once.
    for (std::size_t links = listeningTo.size(); links > 0 && !listeningTo.empty(); --links) {
        MessageNode* const source = listeningTo.back();
        TraceIfThrown("Receive", [&] { MessageNode::StopListening(source); });
        if (Contains(listeningTo, source)) Unlink(this, source);
    }
    for (std::size_t links = listeners.size(); links > 0 && !listeners.empty(); --links) {
        MessageNode* const listener = listeners.back();
        TraceIfThrown("StopListening", [&] { listener->StopListening(this); });
        if (Contains(listeners, listener)) Unlink(listener, this);
    }
    while (!listeningTo.empty())
        Unlink(this, listeningTo.back());
    while (!listeners.empty())
        Unlink(listeners.back(), this);
}

std::int32_t MessageNode::Tell(MessageNode* node, std::int32_t id, const char* event) {
    Message message(id, name + event + node->name);
    return Send(node, &message);
}

// Takes the link down on both ends, also where only one of them has it.
void MessageNode::Unlink(MessageNode* listener, MessageNode* source) {
    std::erase(listener->listeningTo, source);
    std::erase(source->listeners, listener);
}

}  // namespace TVL::Util
