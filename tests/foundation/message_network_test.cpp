#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "tests/foundation/fresh_singletons.h"
#include "tvl/message.h"

namespace {

using TVL::ErrorCode;
using TVL::Log;
using TVL::Util::Message;
using TVL::Util::MessageNode;

std::vector<std::string> heard;

struct Listener : MessageNode {
    using MessageNode::MessageNode;
    void Receive(Message* message, bool isBroadcast) override {
        heard.push_back(GetName() + (isBroadcast ? "*" : "") + std::to_string(message->id));
        if (onReceive) onReceive(*message);
    }
    std::function<void(Message&)> onReceive;
};

// Can keep its side of a link when it is told to end it.
struct Stubborn : Listener {
    using Listener::Listener;
    std::int32_t StopListening(MessageNode*) override { return 1; }
};

class MessageNetwork : public FreshSingletons {
  protected:
    MessageNetwork() { heard.clear(); }

    static std::string IdentifierOf(std::int32_t status) {
        return ErrorCode::GetInstance()->GetByValue(status)->GetIdentifier();
    }

    Listener a{"a"}, b{"b"}, c{"c"};
    MessageNode source{"source"};
};

TEST_F(MessageNetwork, AListenerThatThrowsKeepsNothingFromTheOthers) {
    for (Listener* listener : {&a, &b})
        listener->Listen(&source);
    a.Listen(&b);
    b.onReceive = [](Message&) { throw std::runtime_error("no mood"); };
    EXPECT_THROW(a.StopListening(&b), std::runtime_error);
    EXPECT_FALSE(a.IsListeningTo(&b) || b.IsListener(&a));
    b.onReceive = [](Message& message) {
        if (message.id != Message::kStoppedListening) throw std::runtime_error("no mood");
    };
    Message message(7, "");
    EXPECT_THROW(source.Broadcast(&message), std::runtime_error);
    {
        Listener dying("dying");
        for (Listener* listener : {&a, &b})
            listener->Listen(&dying);
        EXPECT_THROW(dying.Listen(&b), std::runtime_error);
        heard.clear();
    }
    EXPECT_EQ(heard, (std::vector<std::string>{"b*-3", "a*-3", "b-2"}));
    EXPECT_EQ(b.GetListenerCount(), 0);
    EXPECT_EQ(TimesTraced("Exception out of Receive: no mood\n"), 1U);
}

TEST_F(MessageNetwork, ListeningTwiceIsOneLinkAndOneMessage) {
    Listener target("target");
    EXPECT_EQ(a.Listen(&target), 0);
    EXPECT_EQ(a.Listen(&target), 0);
    EXPECT_EQ(a.Listen(nullptr), 0);
    EXPECT_EQ(heard, std::vector<std::string>{"target-1"});
    EXPECT_EQ(a.GetListeningCount(), 1);
    EXPECT_EQ(a.GetListeningTo(0), &target);
    EXPECT_EQ(target.GetListener(0), &a);
    for (const std::int32_t index : {-1, 1}) {
        EXPECT_EQ(a.GetListeningTo(index), nullptr);
        EXPECT_EQ(target.GetListener(index), nullptr);
    }
}

TEST_F(MessageNetwork, ABroadcastReachesTheNewestListenerFirst) {
    Message message(324, "pressed");
    source.Broadcast(&message);
    for (Listener* listener : {&a, &b, &c})
        listener->Listen(&source);
    source.Broadcast(&message);
    EXPECT_EQ(heard, (std::vector<std::string>{"c*324", "b*324", "a*324"}));
    EXPECT_EQ(message.sender, &source);
}

TEST_F(MessageNetwork, AListenerMayEndLinksDuringABroadcast) {
    for (Listener* listener : {&a, &b, &c})
        listener->Listen(&source);
    c.onReceive = [&](Message&) {
        for (Listener* listener : {&a, &b, &c})
            listener->StopListening(&source);
    };
    Message message(324, "pressed");
    source.Broadcast(&message);
    EXPECT_EQ(heard, std::vector<std::string>{"c*324"});
    EXPECT_EQ(source.GetListenerCount(), 0);
}

TEST_F(MessageNetwork, TheFarewellFindsTheLinkStanding) {
    Listener target("target");
    a.Listen(&target);
    target.onReceive = [&](Message& message) {
        EXPECT_EQ(message.text, "a has stopped listening to target");
        EXPECT_TRUE(a.IsListeningTo(&target));
        EXPECT_TRUE(target.IsListener(&a));
    };
    EXPECT_EQ(a.StopListening(&target), 0);
    EXPECT_EQ(heard.back(), "target-2");
    EXPECT_FALSE(a.IsListeningTo(&target));
    EXPECT_FALSE(target.IsListener(&a));
}

TEST_F(MessageNetwork, FailuresAreCodesAndChangeNothing) {
    Message message(1, "m");
    EXPECT_EQ(a.Send(nullptr, &message), -1);
    EXPECT_EQ(a.Send(&b, nullptr), -1);
    EXPECT_EQ(a.StopListening(nullptr), -1);
    EXPECT_EQ(IdentifierOf(a.StopListening(&b)), "MESSAGE_NOT_LISTENING");
    EXPECT_TRUE(heard.empty());
    const std::int32_t null = TVL::Report({"NULL", "no node", ErrorCode::kError});
    EXPECT_EQ(a.Send(nullptr, &message), null);
}

TEST_F(MessageNetwork, ADyingNodeTakesItsLeaveAndIsForgotten) {
    auto dying = std::make_unique<Listener>("dying");
    a.Listen(dying.get());
    b.Listen(dying.get());
    dying->Listen(&c);
    heard.clear();
    MessageNode* const itself = dying.get();
    a.onReceive = [&](Message& message) { EXPECT_EQ(message.lParam, itself); };
    dying.reset();
    EXPECT_EQ(heard, (std::vector<std::string>{"b*-3", "a*-3", "c-2"}));
    EXPECT_EQ(a.GetListeningCount() + b.GetListeningCount() + c.GetListenerCount(), 0);
}

TEST_F(MessageNetwork, ANodeEndsThoughTheOtherSideRefuses) {
    Stubborn stubborn("stubborn");
    {
        MessageNode dying("dying");
        stubborn.Listen(&dying);
    }
    EXPECT_EQ(stubborn.GetListeningCount(), 0);
}

TEST_F(MessageNetwork, ANodeEndsThoughItsReceiversLinkItAnew) {
    {
        MessageNode dying("dying");
        dying.Listen(&a);
        a.onReceive = [&](Message&) { dying.Listen(&b); };
        b.onReceive = [&](Message&) { dying.Listen(&a); };
    }
    EXPECT_EQ(a.GetListenerCount() + b.GetListenerCount(), 0);
}

TEST_F(MessageNetwork, AReceiverMayDieOfBeingLeft) {
    auto target = std::make_unique<Listener>("target");
    a.Listen(target.get());
    target->onReceive = [&](Message&) { target.reset(); };
    EXPECT_EQ(a.StopListening(target.get()), 0);
    EXPECT_EQ(a.GetListeningCount(), 0);
}

TEST_F(MessageNetwork, ANodeThatListensToItselfEnds) {
    Listener self("self");
    self.Listen(&self);
    Message message(5, "m");
    self.Broadcast(&message);
    EXPECT_EQ(heard.back(), "self*5");
}

TEST_F(MessageNetwork, TrafficIsLoggedAtItsLevelOnly) {
    Message message(5, "say \"x\"", -3);
    a.Send(&b, &message);
    EXPECT_EQ(Trace(), "");
    Log::GetInstance()->level = Log::kTraffic;
    a.Send(&b, &message);
    a.SetName("A");
    a.Broadcast(&message);
    EXPECT_EQ(Lines(),
              "(a is sending message to b: \"say \"x\"\" (wParam=-3, lParam=0)\n"
              "(A is broadcasting message: \"say \"x\"\" (wParam=-3, lParam=0)\n");
}

}  // namespace
