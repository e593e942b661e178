#include <regex>

#include "tests/foundation/fresh_singletons.h"
#include "tests/support/folder/temporary_folder.h"

namespace {

using TVL::Log;

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
        outside.buffer.setstate(std::ios::badbit);
        Log(Log::kError).Write("lost");
        Log(Log::kError).Write("next");
        EXPECT_EQ(Lines(), "(NOTICE): \tin the second\n(NOTICE): \tno deeper\n(ERROR): next\n");
        outside.level = -1;
        Log(Log::kCritical).Write("filtered");
        Log(Log::kNotice).WriteRaw("as\tit is\n");
        outside.Destroy();
        TVL::Util::SingletonCollector::GetInstance()->DestroyAll();
        EXPECT_TRUE(Log::external && Log::GetInstance() == &outside) << "is not owned";
        TakeBack<Log>();
    }
    const std::string file = ReadFile(folder.File("log.txt"));
    EXPECT_TRUE(file.ends_with("(ERROR): next\nas\tit is\n[EOF]\n")) << file;
}

}  // namespace
