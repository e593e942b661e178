#include "tvl/log.h"

#include <chrono>
#include <locale>
#include <memory>
#include <regex>

#include "foundation/log_line.h"
#include "tests/foundation/fresh_singletons.h"
#include "tests/support/folder/temporary_folder.h"

namespace {

using TVL::FormatLogLine;
using TVL::Log;

class LogTest : public FreshSingletons {};

struct GroupedDigits : std::numpunct<char> {
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

TEST(LogLine, HasDateTimeLevelDepthAndMessage) {
    using namespace std::chrono;
    const sys_seconds early = sys_days{2006y / January / 2} + 3h + 4min + 5s;
    const sys_seconds late = sys_days{2026y / December / 31} + 23h + 59min + 58s;
    const sys_seconds leap = sys_days{2000y / February / 29};
    EXPECT_EQ(FormatLogLine(early, 0, -1, "m"), "20060102 03:04:05 (CRITICAL): m\n");
    EXPECT_EQ(FormatLogLine(late, 1, 0, "m"), "20261231 23:59:58 (ERROR): \tm\n");
    EXPECT_EQ(FormatLogLine(leap, 2, 1, "m"), "20000229 00:00:00 (WARNING): \t\tm\n");
    EXPECT_EQ(FormatLogLine(early, 3, -2, ""), "20060102 03:04:05 (NOTICE): \n");
    EXPECT_EQ(FormatLogLine(early, 4, 0, "m"), "20060102 03:04:05 (\tm\n");
    EXPECT_EQ(FormatLogLine(early, -5, -1, "m"), "20060102 03:04:05 (m\n");
}

TEST_F(LogTest, WritesWithTheMomentInFront) {
    Log(Log::kError).Print("lost");
    EXPECT_TRUE(std::regex_match(Trace(), std::regex(R"(\d{8} \d\d:\d\d:\d\d \(ERROR\): lost\n)")));
}

TEST_F(LogTest, LetsThroughWhatIsWithinTheLimit) {
    Log log(Log::kNotice);
    log.Write("own level");
    log.Write("traffic", Log::kTraffic);
    log.WriteValue("traffic", 1, Log::kTraffic);
    EXPECT_TRUE(log.IsLevelActive(Log::kNotice));
    EXPECT_FALSE(log.IsLevelActive(Log::kTraffic));
    EXPECT_EQ(Lines(), "(NOTICE): own level\n");

    Log::GetInstance()->level = Log::kTraffic;
    log.Write("traffic", Log::kTraffic);
    EXPECT_EQ(Lines(), "(NOTICE): own level\n(traffic\n");
}

TEST_F(LogTest, IndentsByTheScopesThatWereOpenWhenTheObjectWasMade) {
    {
        Log outer("outer", Log::kNotice);
        Log local(Log::kWarning);
        {
            Log silent("never seen", Log::kTraffic);
            Log inner("inner", Log::kNotice);
            Log(Log::kError).Write("deep");
            local.Write("kept");
            EXPECT_EQ(Log::GetInstance()->indent, 2);
        }
        outer.Write("back");
    }
    Log::GetInstance()->Write("outside");
    EXPECT_EQ(Log::GetInstance()->indent, -1);
    EXPECT_EQ(Lines(),
              "(NOTICE): \touter\n"
              "(NOTICE): \t\t\tinner\n"
              "(ERROR): \t\t\tdeep\n"
              "(WARNING): \tkept\n"
              "(NOTICE): \tback\n"
              "(NOTICE): outside\n");
}

TEST_F(LogTest, WritesNamesWithValuesInPlainForm) {
    std::locale::global(std::locale(std::locale::classic(), new GroupedDigits));
    Log log(Log::kNotice);
    log.WriteValue("text", std::string("two words"));
    log.WriteValue("literal", "one");
    log.WriteValue("nothing", static_cast<const char*>(nullptr));
    log.WriteValue("number", -1234567);
    log.WriteValue("address", reinterpret_cast<const void*>(0x12345678));
    std::locale::global(std::locale::classic());
    EXPECT_EQ(Lines(),
              "(NOTICE): text: two words\n(NOTICE): literal: one\n(NOTICE): nothing: \n"
              "(NOTICE): number: -1234567\n(NOTICE): address: 0x12345678\n");
}

TEST_F(LogTest, RawTextIsNeitherFilteredNorDated) {
    Log scope("scope", Log::kTraffic);
    Log::GetInstance()->level = -1;
    scope.WriteRaw("as\tit is");
    scope.Write("not", Log::kCritical);
    EXPECT_EQ(Trace(), "as\tit is");
}

TEST_F(LogTest, AScopeThatOutlivesItsLogLeavesTheNextOneOutermost) {
    Log outside;
    auto scope = std::make_unique<Log>("in the first log", Log::kNotice);
    Place(outside);
    { Log nested("in the second", Log::kNotice); }
    scope.reset();
    EXPECT_EQ(outside.indent, -1);
    { Log next("as ever", Log::kNotice); }
    EXPECT_EQ(Lines(), "(NOTICE): \tin the second\n(NOTICE): \tas ever\n");
}

// As one does for want of memory, or of a disk.
TEST_F(LogTest, AStreamThatFailsOrThrowsCostsItsLineAlone) {
    Log outside;
    Place(outside);
    for (const auto mask : {std::ios::goodbit, std::ios::badbit | std::ios::failbit}) {
        outside.buffer.exceptions(mask);
        try {
            outside.buffer.setstate(std::ios::badbit);
        } catch (const std::ios::failure&) {
        }
        Log(Log::kError).Write("lost");
        Log(Log::kError).Write("next");
    }
    EXPECT_EQ(Lines(), "(ERROR): next\n(ERROR): next\n");
    TakeBack<Log>();
}

TEST_F(LogTest, ThePlacedLogFillsItsFileAndEndsIt) {
    const TemporaryFolder folder;
    const std::string path = folder.File("log.txt");
    {
        Log outside;
        outside.file.open(path, std::ios::binary);
        Place(outside);
        { Log local(Log::kNotice); }
        outside.WriteRaw("line\n");
        TakeBack<Log>();
    }
    EXPECT_EQ(ReadFile(path), "line\n[EOF]\n");
}

}  // namespace
