#include <regex>

#include "tests/foundation/fresh_singletons.h"
#include "tests/support/allocations.h"
#include "tests/support/folder/temporary_folder.h"

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
    destroyed.clear();
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

// The registry of codes ---------------------------------------------------------------------------

class ErrorCodes : public FreshSingletons {
  protected:
    static ErrorCode& Registry() { return *ErrorCode::GetInstance(); }
    static std::string Told(const ErrorCode& code) {
        return std::to_string(code.GetValue()) + ' ' + code.GetIdentifier() + ", " +
               code.GetMessage() + ", " + std::to_string(code.GetType());
    }
};

TEST_F(ErrorCodes, AFreshRegistryKnowsSuccessAndIsItselfNotFound) {
    EXPECT_EQ(Told(*Registry().GetByValue(0)), "0 SUCCESS, The function returned successfully, 4");
    for (const ErrorCode* missing : {Registry().GetByValue(4711), Registry().GetByIdentifier("X"),
                                     Registry().Register(nullptr)})
        EXPECT_EQ(missing, &Registry());
    EXPECT_EQ(Told(Registry()), "-1 NOTFOUND, (Error code not found), 1");
    EXPECT_EQ(Lines(),
              "(WARNING): Errorcode not found. value: 4711\n"
              "(ERROR): Return value: (Error code not found)\n");
    // What is registered stays behind when a code is assigned.
    ErrorCode registry;
    registry = ErrorCode("A", "a", ErrorCode::kNotice);
    EXPECT_EQ(Told(registry), "1024 A, a, 3");
    EXPECT_TRUE(registry.HasIdentifier("SUCCESS"));
}

TEST_F(ErrorCodes, DeclareRegistersOnceKeepsTheFirstTextsAndLogsByTheirSeverity) {
    Registry().Declare("A", "first", ErrorCode::kWarning);
    EXPECT_EQ(Lines(),
              "(NOTICE): \tRegister Code\n(NOTICE): \tnew_value: 1024\n"
              "(NOTICE): \tnew_identifier: A\n(NOTICE): \tnew_message: first\n"
              "(NOTICE): \tnew_type: 2\n(WARNING): Return value: first\n");
    EXPECT_EQ(Told(*Registry().Declare("A", "second", ErrorCode::kCritical)), "1024 A, first, 2");
    for (std::int32_t type = 0; type <= 4; ++type) {
        EXPECT_EQ(TVL::Report({std::to_string(type).c_str(), "text", type}), 1025 + type);
        const bool isMild = type == ErrorCode::kWarning || type == ErrorCode::kNotice;
        EXPECT_TRUE(Lines().ends_with(isMild ? "(WARNING): Return value: text\n"
                                             : "(ERROR): Return value: text\n"));
    }
}

TEST_F(ErrorCodes, RegisterTakesACopyOfWhatIsNew) {
    ErrorCode first("A", "a", ErrorCode::kError);
    ErrorCode sameIdentifier("A", "another", ErrorCode::kError);
    ErrorCode sameValue(first);
    EXPECT_EQ(Registry().Register(&first), &first);
    EXPECT_NE(Registry().GetByIdentifier("A"), &first);
    EXPECT_EQ(Registry().Register(&sameIdentifier)->GetMessage(), "a");
    EXPECT_EQ(Registry().Register(&sameValue)->GetIdentifier(), "ERRORCODE_NONUNIQUEVALUE");
    EXPECT_FALSE(Registry().HasValue(sameIdentifier));
    EXPECT_EQ(first.Register(&sameIdentifier)->GetIdentifier(), "ERRORCODE_NONCONTAINER");
    EXPECT_EQ(first.Declare("B", "b", ErrorCode::kError), &Registry());
    EXPECT_FALSE(first.HasIdentifier("A") || first.HasIdentifier("B"));
    const std::string start = "\tError: Trying to register error code ";
    for (const char* refusal : {"with a non-unique identifier: A\n",
                                "with a non-unique value: 1024\n", "to a non-container: another\n"})
        EXPECT_EQ(TimesTraced(start + refusal), 1U) << refusal;
}

// The log -----------------------------------------------------------------------------------------

class LogTest : public FreshSingletons {};

TEST_F(LogTest, ALineHasTheMomentTheWordOfItsLevelAndTheDepthOfItsObject) {
    Log::GetInstance()->level = Log::kTraffic;
    {
        Log outer("outer", Log::kNotice);
        Log local(Log::kWarning);
        {
            Log silent("unseen", Log::kTraffic + 1);
            Log inner("inner", Log::kCritical);
            Log(Log::kError).Print("deep");
            local.Write("kept");
        }
        outer.Write("back", Log::kTraffic);
        outer.WriteValue("nothing", static_cast<const char*>(nullptr));
        outer.WriteValue("number", -1234567, Log::kTraffic + 1);
        outer.WriteValue("number", -1234567);
        outer.WriteValue("address", reinterpret_cast<const void*>(0x12345678));
    }
    Log(Log::kNotice).Write("outside");
    EXPECT_EQ(Log::GetInstance()->indent, -1);
    EXPECT_EQ(Lines(),
              "(NOTICE): \touter\n(CRITICAL): \t\t\tinner\n(ERROR): \t\t\tdeep\n"
              "(WARNING): \tkept\n(\tback\n(NOTICE): \tnothing: \n(NOTICE): \tnumber: -1234567\n"
              "(NOTICE): \taddress: 0x12345678\n(NOTICE): outside\n");
    EXPECT_TRUE(std::regex_search(
        Trace(),
        std::regex(R"(^20\d\d[01]\d[0-3]\d [0-2]\d:[0-5]\d:[0-6]\d \(NOTICE\): \touter\n)")));
}

// One fails as for want of memory, or of a disk.
TEST_F(LogTest, APlacedLogFillsItsFileAlsoWithRawTextAndCostsOnlyTheLineThatFails) {
    const TemporaryFolder folder;
    {
        Log outside;
        outside.file.open(folder.File("log.txt"), std::ios::binary);
        auto scope = std::make_unique<Log>("in the first log", Log::kNotice);
        Place(outside);
        { Log nested("in the second", Log::kNotice); }
        scope.reset();
        { Log next("no deeper", Log::kNotice); }
        outside.buffer->setstate(std::ios::badbit);
        EXPECT_THROW(outside.buffer->exceptions(std::ios::badbit), std::ios::failure);
        Log(Log::kError).Write("lost");
        Log(Log::kError).Write("next");
        EXPECT_EQ(Lines(), "(NOTICE): \tin the second\n(NOTICE): \tno deeper\n(ERROR): next\n");
        outside.level = -1;
        Log(Log::kCritical).Write("filtered");
        Log(Log::kNotice).WriteRaw("as\tit is\n");
        outside.Destroy();
        TVL::Util::SingletonCollector::GetInstance()->DestroyAll();
        EXPECT_TRUE(Log::external && Log::GetInstance() == &outside) << "is not owned";
        TakeBack();
    }
    const std::string file = ReadFile(folder.File("log.txt"));
    EXPECT_TRUE(file.ends_with("(ERROR): next\nas\tit is\n[EOF]\n")) << file;
}

// Also one of a role that as a rule has none, and one that was made before they could be late.
TEST_F(LogTest, StreamsAreMadeWhereTheyAreUsedAndInTheirOwnMemory) {
    const TemporaryFolder folder;
    {
        Log::GetInstance();
        const std::size_t before = Allocations();
        Log scope("unseen", Log::kTraffic);
        const Log local(Log::kNotice);
        EXPECT_EQ(Allocations(), before);
        EXPECT_FALSE(local.file.is_open() || local.file.IsMade() || local.buffer.IsMade());
        EXPECT_EQ(local.buffer.str(), "");
        scope.file.open(folder.File("own.txt"));
        scope.file << "kept" << std::flush;
    }
    EXPECT_TRUE(ReadFile(folder.File("own.txt")).starts_with("kept[EOF]"));

    Log placed(Log::kNotice);
    Place(placed);
    Log(Log::kError).WriteRaw("one\n");
    EXPECT_EQ(reinterpret_cast<std::stringstream*>(&placed.buffer)->str(), "one\n");
    TakeBack();

    std::stringstream before("two");
    auto& late = reinterpret_cast<TVL::Util::LateStream<std::stringstream>&>(before);
    EXPECT_TRUE(late.IsMade() && late.str() == "two");
    const Log whole;
    EXPECT_TRUE(whole.file.IsMade() && whole.buffer.IsMade());
}

}  // namespace
