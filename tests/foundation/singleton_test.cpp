#include "tvl/singleton.h"

#include <array>
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/foundation/fresh_singletons.h"

namespace {

using TVL::ErrorCode;
using TVL::Log;
using TVL::Util::Singleton;
using TVL::Util::SingletonCollector;
using TVL::Util::SingletonReference;

using Entries = std::vector<SingletonReference*>;

std::vector<std::string> destroyed;

struct Older : Singleton<Older> {
    ~Older() override { destroyed.push_back("older"); }
};

// Uses another singleton while it is made, and the trace while it dies. As with the adaptor, its
// singleton base is not its first one.
struct OtherBase {
    virtual ~OtherBase() = default;
    int payload = 7;
};
struct Newer : OtherBase, Singleton<Newer> {
    Newer() { Older::GetInstance(); }
    ~Newer() override { destroyed.push_back("newer"); }
};

struct Talkative : Singleton<Talkative> {
    ~Talkative() override { Log("dying", Log::kNotice); }
};

class Singletons : public FreshSingletons {
  protected:
    Singletons() { destroyed.clear(); }

    static const Entries& List() { return SingletonCollector::GetInstance()->GetEntries(); }
};

TEST_F(Singletons, ComeUpOnceAndAreDestroyedTheNewestFirst) {
    Newer* const newer = Newer::GetInstance();
    EXPECT_EQ(Newer::GetInstance(), newer);
    EXPECT_EQ(List(), (Entries{SingletonCollector::instance, Older::instance,
                               static_cast<Singleton<Newer>*>(newer)}));

    SingletonCollector::GetInstance()->DestroyAll();
    EXPECT_EQ(destroyed, (std::vector<std::string>{"newer", "older"}));
    EXPECT_EQ(Newer::instance, nullptr);
    EXPECT_EQ(Older::instance, nullptr);
    EXPECT_EQ(SingletonCollector::instance, nullptr);
}

TEST_F(Singletons, StartWithCollectorRegistryAndLogInThisOrder) {
    TVL::Report({"FIRST", "first", ErrorCode::kError});
    EXPECT_EQ(List(), (Entries{SingletonCollector::instance, ErrorCode::instance, Log::instance}));
}

TEST_F(Singletons, RemoveErasesEveryEqualEntryAndNothingElse) {
    SingletonCollector& collector = *SingletonCollector::GetInstance();
    Log stray(Log::kNotice);
    const Entries before = List();
    collector.Remove(&stray);
    EXPECT_EQ(List(), before);
    collector.Add(&stray);
    collector.Add(&stray);
    collector.Remove(&stray);
    EXPECT_EQ(List(), before);
}

TEST_F(Singletons, DestroyTwiceDestroysOnce) {
    Older::GetInstance()->Destroy();
    std::optional<Older> stray;
    stray.emplace().Destroy();
    EXPECT_EQ(destroyed.size(), 1u);
    EXPECT_EQ(List(), Entries{SingletonCollector::instance});
}

TEST_F(Singletons, AnOutsideInstanceIsUsedAndNeverDestroyed) {
    Log outside;
    Log::GetInstance();
    Place(outside);
    Older::GetInstance();
    outside.Destroy();
    SingletonCollector::GetInstance()->DestroyAll();
    EXPECT_EQ(destroyed.size(), 1u);
    EXPECT_EQ(Log::GetInstance(), &outside);
    EXPECT_TRUE(Log::external);
}

TEST_F(Singletons, AScopeThatOutlivesEverythingBringsUpACollectorAndALog) {
    auto scope = std::make_unique<Log>("Shutting down adaptor", Log::kNotice);
    SingletonCollector::GetInstance()->DestroyAll();
    EXPECT_EQ(SingletonCollector::instance, nullptr);
    EXPECT_EQ(Log::instance, nullptr);
    scope.reset();
    ASSERT_NE(Log::instance, nullptr);
    EXPECT_EQ(List(), (Entries{SingletonCollector::instance, Log::instance}));
    EXPECT_EQ(Log::instance->indent, -1);
}

// Left for the end of the program, where a leak checker sees whether it is freed.
TEST_F(Singletons, ALogThatComesUpWhileEverythingGoesDownStaysToTheEnd) {
    Talkative::GetInstance();
    SingletonCollector::GetInstance()->DestroyAll();
    ASSERT_NE(Log::instance, nullptr);
    EXPECT_EQ(Lines(), "(NOTICE): \tdying\n");
    SingletonCollector::GetInstance()->DestroyAll();
    Log::GetInstance()->Destroy();
}

TEST_F(Singletons, AnOutsideInstanceThatIsGoneIsNotTouchedWhenTheProgramEnds) {
    const auto endProgram = [] {
        alignas(Log) static std::array<std::byte, sizeof(Log)> gone{};
        Log::instance = reinterpret_cast<Log*>(gone.data());
        Log::external = true;
        std::exit(0);
    };
    EXPECT_EXIT(endProgram(), testing::ExitedWithCode(0), "");
}

}  // namespace
