#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "recorder/proxies/scribe.h"
#include "tvl/message.h"

namespace recorder {

class MessageProxy;

// The two halves of the network of message nodes. A node of one side is met on the other as a
// proxy, which is linked there as the node would be: for a link across there are two, from a node
// to a proxy on each side.
class MessageNet {
  public:
    explicit MessageNet(Scribe& scribe);
    ~MessageNet();
    MessageNet(const MessageNet&) = delete;
    MessageNet& operator=(const MessageNet&) = delete;

    // What stands on the other side for a node or proxy of this one; null for null, and where there
    // is no memory. `kind` tells whose it is, if it is a node; the message, what it is met for.
    MessageNode* Across(MessageNode* node, ObjectKind kind,
                        std::int32_t messageId = TVL::Util::Message::kListening);

    ObjectId IdOf(const MessageNode* node) const;  // or of a proxy

    void TellObjects(const TapeWriter::TellObject& tell) const;

  private:
    friend class MessageProxy;

    MessageProxy* Proxy(MessageNode& node, ObjectKind kind, std::int32_t messageId);

    Scribe& scribe_;
    mutable std::mutex mutex_;
    std::vector<std::unique_ptr<MessageProxy>> proxies_;
};

}  // namespace recorder
