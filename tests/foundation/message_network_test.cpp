#include "tests/foundation/fresh_singletons.h"

namespace {

using TVL::Util::Message;
using TVL::Util::MessageNode;

std::string heard;

struct Listener : MessageNode {
    using MessageNode::MessageNode;
    void Receive(Message* message, bool isBroadcast) override {
        heard += GetName() + (isBroadcast ? "*" : "") + std::to_string(message->id) + ' ';
        if (onReceive) onReceive(*message);
    }
    std::function<void(Message&)> onReceive;
};

class MessageNetwork : public FreshSingletons {
  protected:
    MessageNetwork() { heard.clear(); }

    void AllListenTo(MessageNode& node) {
        for (Listener* listener : {&a, &b, &c})
            listener->Listen(&node);
        heard.clear();
    }

    Listener a{"a"}, b{"b"}, c{"c"};
    MessageNode source{"source"};
    Message message{324, "say \"x\"", -3};
};

TEST_F(MessageNetwork, ALinkStandsOnceAndABroadcastReachesTheNewestFirstWhoMayEndAnyLink) {
    for (MessageNode* node : {&b, &b, static_cast<Listener*>(nullptr)})
        EXPECT_EQ(a.Listen(node), 0);
    EXPECT_EQ(heard, "b-1 ");
    EXPECT_TRUE(a.GetListeningTo(0) == &b && b.GetListener(0) == &a);
    for (const std::int32_t index : {-1, a.GetListeningCount()})
        EXPECT_FALSE(a.GetListeningTo(index) || b.GetListener(index));

    AllListenTo(source);
    source.Broadcast(&message);
    EXPECT_EQ(message.sender, &source);
    c.onReceive = [&](Message&) {
        for (Listener* listener : {&a, &b, &c})
            listener->StopListening(&source);
    };
    source.Broadcast(&message);
    EXPECT_EQ(heard, "c*324 b*324 a*324 c*324 ");
    EXPECT_EQ(source.GetListenerCount(), 0);
}

TEST_F(MessageNetwork, TheFarewellFindsTheLinkStandingAlsoWhereItsReceiverThrowsOrDies) {
    a.Listen(&b);
    b.onReceive = [&](Message& farewell) {
        EXPECT_EQ(farewell.text, "a has stopped listening to b");
        EXPECT_TRUE(a.IsListeningTo(&b) && b.IsListener(&a));
        throw std::runtime_error("no mood");
    };
    EXPECT_THROW(a.StopListening(&b), std::runtime_error);
    auto mortal = std::make_unique<Listener>("mortal");
    a.Listen(mortal.get());
    mortal->onReceive = [&](Message&) { mortal.reset(); };
    EXPECT_EQ(a.StopListening(mortal.get()), 0);
    EXPECT_EQ(a.GetListeningCount() + b.GetListenerCount(), 0);
}

TEST_F(MessageNetwork, ADyingNodeTakesItsLeaveOfWhoThrowsRefusesOrLinksItAnewAndIsForgotten) {
    struct Stubborn : Listener {
        using Listener::Listener;
        std::int32_t StopListening(MessageNode*) override { return 1; }
    } stubborn("stubborn");
    {
        Listener dying("dying");
        stubborn.Listen(&dying);
        dying.Listen(&dying);
        dying.Listen(&a);
        AllListenTo(dying);
        b.onReceive = [&](Message& farewell) {
            EXPECT_EQ(farewell.lParam, &dying);
            throw std::runtime_error("no mood");
        };
        a.onReceive = [&](Message&) { dying.Listen(&c); };
        c.onReceive = [&](Message& told) {
            if (told.id == Message::kListening) dying.Listen(&source);
        };
    }
    EXPECT_EQ(heard, "c*-3 b*-3 a*-3 c-1 stubborn*-3 c-2 a-2 c-1 ");
    for (const MessageNode* node :
         std::initializer_list<const MessageNode*>{&a, &b, &c, &stubborn, &source})
        EXPECT_EQ(node->GetListeningCount() + node->GetListenerCount(), 0);
    EXPECT_EQ(TimesTraced("Exception out of Receive: no mood\n"), 1U);
}

// A program that has set a person's locale, such as a host.
struct GroupedDigits : std::numpunct<char> {
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

TEST_F(MessageNetwork, FailuresAreCodesAndTrafficIsLoggedAtItsLevelOnlyWithPlainNumbers) {
    for (const std::int32_t status :
         {a.Send(nullptr, &message), a.Send(&b, nullptr), a.StopListening(nullptr)})
        EXPECT_EQ(status, -1);
    const std::int32_t status = a.StopListening(&b);
    EXPECT_EQ(*TVL::ErrorCode::GetInstance()->GetByIdentifier("MESSAGE_NOT_LISTENING"), status);
    const std::int32_t null = TVL::Report({"NULL", "no node", TVL::ErrorCode::kError});
    EXPECT_EQ(a.Send(nullptr, &message), null);

    std::locale::global(std::locale(std::locale::classic(), new GroupedDigits));
    message.wParam = -1234567;
    a.Send(&b, &message);
    TVL::Log::GetInstance()->level = TVL::Log::kTraffic;
    a.Send(&b, &message);
    a.SetName("A");
    a.Broadcast(&message);
    std::locale::global(std::locale::classic());
    EXPECT_TRUE(Lines().ends_with(
        "Return value: no node\n"
        "(a is sending message to b: \"say \"x\"\" (wParam=-1234567, lParam=0)\n"
        "(A is broadcasting message: \"say \"x\"\" (wParam=-1234567, lParam=0)\n"));
}

}  // namespace
