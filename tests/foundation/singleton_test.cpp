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
using Entries = std::vector<TVL::Util::SingletonReference*>;

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
    ~Newer() override {
        destroyed.push_back("newer");
        Log("dying", Log::kNotice);
    }
};

class Singletons : public FreshSingletons {
  protected:
    Singletons() { destroyed.clear(); }

    static SingletonCollector& Collector() { return *SingletonCollector::GetInstance(); }
    static const Entries& List() { return Collector().GetEntries(); }
};

// A log that comes up meanwhile stays, on nobody's list.
TEST_F(Singletons, ComeUpOnceAndAreDestroyedTheNewestFirst) {
    Newer* const newer = Newer::GetInstance();
    EXPECT_EQ(Newer::GetInstance(), newer);
    EXPECT_EQ(List(), (Entries{SingletonCollector::instance, Older::instance,
                               static_cast<Singleton<Newer>*>(newer)}));
    Collector().DestroyAll();
    EXPECT_EQ(destroyed, (std::vector<std::string>{"newer", "older"}));
    EXPECT_FALSE(Newer::instance || Older::instance);
    EXPECT_EQ(Lines(), "(NOTICE): \tdying\n");
    Log::GetInstance()->Destroy();
    Collector().DestroyAll();
    EXPECT_FALSE(SingletonCollector::instance || Log::instance);
    TVL::Report({"FIRST", "first", ErrorCode::kError});
    EXPECT_EQ(List(), (Entries{SingletonCollector::instance, ErrorCode::instance, Log::instance}));
}

TEST_F(Singletons, TheListHoldsOwnedInstancesAloneEachUntilItGoes) {
    Log stray(Log::kNotice);
    const Entries before = List();
    Collector().Remove(&stray);
    EXPECT_EQ(List(), before);
    Collector().Add(&stray);
    Collector().Add(&stray);
    Collector().Remove(&stray);
    EXPECT_EQ(List(), before);

    Older::GetInstance()->Destroy();
    std::optional<Older> other;
    other.emplace().Destroy();
    EXPECT_EQ(destroyed.size(), 1u);
    EXPECT_EQ(List(), before);
}

// A scope that outlives everything brings up a collector and a log.
TEST_F(Singletons, AnOutsideInstanceIsUsedAndNeverDestroyedAndAScopeOutlivesAll) {
    {
        Log outside;
        Place(outside);
        Older::GetInstance();
        outside.Destroy();
        Collector().DestroyAll();
        EXPECT_EQ(destroyed.size(), 1u);
        EXPECT_TRUE(Log::external && Log::GetInstance() == &outside);
        TakeBack<Log>();
    }
    auto scope = std::make_unique<Log>("Shutting down adaptor", Log::kNotice);
    Collector().DestroyAll();
    scope.reset();
    ASSERT_NE(Log::instance, nullptr);
    EXPECT_EQ(List(), (Entries{SingletonCollector::instance, Log::instance}));
    EXPECT_EQ(Log::instance->indent, -1);
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
