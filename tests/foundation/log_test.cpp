#include "tvl/log.h"

#include <memory>
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
            EXPECT_EQ(Log::GetInstance()->indent, 2);
        }
        outer.Write("back", Log::kTraffic);
    }
    Log::GetInstance()->Write("outside", Log::kNotice);
    EXPECT_EQ(Log::GetInstance()->indent, -1);
    EXPECT_EQ(Lines(),
              "(NOTICE): \touter\n(CRITICAL): \t\t\tinner\n(ERROR): \t\t\tdeep\n"
              "(WARNING): \tkept\n(\tback\n(NOTICE): outside\n");
    EXPECT_TRUE(std::regex_search(
        Trace(),
        std::regex(R"(^20\d\d[01]\d[0-3]\d [0-2]\d:[0-5]\d:[0-6]\d \(NOTICE\): \touter\n)")));
}

TEST_F(LogTest, WritesNamesWithValuesInPlainFormWithinTheLimit) {
    const WithGroupedDigits locale;
    Log log(Log::kNotice);
    log.WriteValue("text", std::string("two words"));
    log.WriteValue("literal", "one");
    log.WriteValue("nothing", static_cast<const char*>(nullptr));
    log.WriteValue("number", -1234567);
    log.WriteValue("address", reinterpret_cast<const void*>(0x12345678));
    log.Write("traffic", Log::kTraffic);
    log.WriteValue("traffic", 1, Log::kTraffic);
    EXPECT_EQ(Lines(),
              "(NOTICE): text: two words\n(NOTICE): literal: one\n(NOTICE): nothing: \n"
              "(NOTICE): number: -1234567\n(NOTICE): address: 0x12345678\n");
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
        for (const auto mask : {std::ios::goodbit, std::ios::badbit | std::ios::failbit}) {
            outside.buffer.exceptions(mask);
            try {
                outside.buffer.setstate(std::ios::badbit);
            } catch (const std::ios::failure&) {
            }
            Log(Log::kError).Write("lost");
            Log(Log::kError).Write("next");
        }
        EXPECT_EQ(Lines(),
                  "(NOTICE): \tin the second\n(NOTICE): \tno deeper\n"
                  "(ERROR): next\n(ERROR): next\n");
        outside.level = -1;
        Log(Log::kCritical).Write("filtered");
        Log(Log::kNotice).WriteRaw("as\tit is\n");
        TakeBack<Log>();
    }
    const std::string file = ReadFile(folder.File("log.txt"));
    EXPECT_TRUE(file.ends_with("(ERROR): next\nas\tit is\n[EOF]\n")) << file;
}

}  // namespace
