#include <array>
#include <cstddef>
#include <cstdlib>

#include "tests/foundation/fresh_singletons.h"

namespace {

using TVL::ErrorCode;
using TVL::Log;
using TVL::Util::Singleton;
using TVL::Util::SingletonCollector;
using Entries = std::vector<TVL::Util::SingletonReference*>;

std::string destroyed;

struct Older : Singleton<Older> {
    ~Older() override { destroyed += "older "; }
};

// Uses another singleton while it is made, and the trace while it dies. As with the adaptor, its
// singleton base is not its first one.
struct Newer : TVL::Util::Message, Singleton<Newer> {
    Newer() : Message(0, "") { Older::GetInstance(); }
    ~Newer() override {
        destroyed += "newer ";
        Log("dying", Log::kNotice);
    }
};

class Singletons : public FreshSingletons {
  protected:
    static SingletonCollector& Collector() { return *SingletonCollector::GetInstance(); }
    static const Entries& List() { return Collector().GetEntries(); }
};

// What comes up meanwhile stays: an instance of its own for a scope that outlives all.
TEST_F(Singletons, ComeUpOnceAndAreDestroyedTheNewestFirst) {
    Newer* const newer = Newer::GetInstance();
    EXPECT_EQ(Newer::GetInstance(), newer);
    const Entries list = {SingletonCollector::instance, Older::instance,
                          static_cast<Singleton<Newer>*>(newer)};
    EXPECT_EQ(List(), list);
    {
        Log stray(Log::kNotice);
        Log::GetInstance()->Destroy();
        for (int i = 0; i < 2; ++i)
            Collector().Add(&stray);
    }
    EXPECT_EQ(List(), list) << "all entries of an object go with it";
    Collector().DestroyAll();
    EXPECT_EQ(destroyed, "newer older ");
    EXPECT_FALSE(Newer::instance || Older::instance);
    EXPECT_EQ(Lines(), "(NOTICE): \tdying\n");

    Log::GetInstance()->Destroy();
    TVL::Report({"FIRST", "first", ErrorCode::kError});
    EXPECT_EQ(List(), (Entries{SingletonCollector::instance, ErrorCode::instance, Log::instance}));
    auto scope = std::make_unique<Log>("Shutting down adaptor", Log::kNotice);
    Collector().DestroyAll();
    EXPECT_FALSE(SingletonCollector::instance || ErrorCode::instance || Log::instance);
    scope.reset();
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
