#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace TVL::Util {

class MessageNode;

// What is sent. The sender owns it; it is valid for the length of the call. The order of the fields
// is part of the contract.
class Message {
  public:
    // Ids that every node sends. The ids above 0 belong to those who agree on them.
    enum Id : std::int32_t {
        kListening = -1,         // to the node that is now listened to
        kStoppedListening = -2,  // to the node that is listened to, while the link still stands
        kStopBroadcasting = -3,  // broadcast by a dying node, which `lParam` points to
    };

    Message() = default;
    Message(std::int32_t messageId, std::string messageText, std::int32_t firstParameter = 0,
            void* secondParameter = nullptr);
    virtual ~Message() = default;

    MessageNode* sender = nullptr;  // set by Send and Broadcast
    std::int32_t id = 0;
    std::string text;  // for the log
    std::int32_t wParam = 0;
    void* lParam = nullptr;

  protected:
    Message(const Message&) = default;
    Message& operator=(const Message&) = default;
};

// A node of the network between objects on both sides of the boundary: it listens to other nodes,
// sends to one node, or broadcasts to all that listen to it. Links stand on both ends, own nothing,
// and go when either end dies. A message runs at once on the sender's stack; its receiver may send
// further and may end links, but must not destroy the sender. One thread uses the network, and
// messages are logged at level 4.
//
// A status is 0, or the value of a TVL::ErrorCode. The order of virtual operations and of fields is
// part of the contract.
class MessageNode {
  public:
    explicit MessageNode(std::string nodeName) : name(std::move(nodeName)) {}

    virtual void SetName(std::string newName) { name = std::move(newName); }

    // What a subclass overrides. Messages with negative ids come here too.
    virtual void Receive(Message*, bool /*isBroadcast*/) {}

    virtual std::int32_t Send(MessageNode* target, Message* message);

    // The newest listener hears first. What one of them throws comes out when all have heard.
    virtual void Broadcast(Message* message);

    // Sends kListening to `node` once the link stands. Nothing happens for null and for a node that
    // is listened to already.
    virtual std::int32_t Listen(MessageNode* node);

    // Sends kStoppedListening to `node`, then ends the link, also if that throws.
    virtual std::int32_t StopListening(MessageNode* node);

    virtual std::string GetName() const { return name; }

    // In order of joining; null for an index out of range.
    virtual std::int32_t GetListeningCount() const {
        return static_cast<std::int32_t>(listeningTo.size());
    }
    virtual MessageNode* GetListeningTo(std::int32_t index) const;
    virtual std::int32_t GetListenerCount() const {
        return static_cast<std::int32_t>(listeners.size());
    }
    virtual MessageNode* GetListener(std::int32_t index) const;

    virtual bool IsListener(const MessageNode* node) const;
    virtual bool IsListeningTo(const MessageNode* node) const;

    // Broadcasts kStopBroadcasting, then ends every link, so that no node keeps a pointer to this
    // one.
    virtual ~MessageNode();

    MessageNode(const MessageNode&) = delete;
    MessageNode& operator=(const MessageNode&) = delete;

  private:
    std::int32_t Tell(MessageNode* node, std::int32_t id, const char* event);
    static void Unlink(MessageNode* listener, MessageNode* source);

    std::string name;
    std::vector<MessageNode*> listeners;    // those that listen to this node
    std::vector<MessageNode*> listeningTo;  // those that this node listens to
};

}  // namespace TVL::Util
