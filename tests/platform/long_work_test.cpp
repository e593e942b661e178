#include <gtest/gtest.h>

#include <array>
#include <csignal>

#include "platform/interrupt.h"
#include "platform/progress_line.h"

namespace {

using platform::Interrupt;
using platform::ProgressLine;
using Clock = ProgressLine::Clock;

Clock::time_point theTime;

// What a terminal shows in the end of what was written to it.
std::string Shown(const std::string& written) {
    std::string line;
    std::size_t column = 0;
    for (const char c : written) {
        if (c == '\r') {
            column = 0;
            continue;
        }
        line.resize(std::max(line.size(), column + 1), ' ');
        line[column++] = c;
    }
    return line.substr(0, line.find_last_not_of(' ') + 1);
}

TEST(ProgressLine, TellsTheTimeThatIsLeftFromTheRateSoFarAndIsWiped) {
    struct Moment {
        std::size_t done;
        double seconds;
        const char* shown;
    };
    constexpr std::array kMoments = {
        Moment{1, 0.05, "Work [                    ] 0 of 1000"},   // just drawn
        Moment{10, 0.3, "Work [                    ] 10 of 1000"},  // no rate is known yet
        Moment{100, 10, "Work [##                  ] 100 of 1000, about 90 s left"},
        Moment{100, 30, "Work [##                  ] 100 of 1000, about 5 min left"},
        Moment{750, 33, "Work [###############     ] 750 of 1000, about 11 s left"},
        Moment{999, 40, "Work [################### ] 999 of 1000, about 1 s left"},
        Moment{1000, 41, "Work [####################] 1000 of 1000"},
    };
    const auto now = [] { return theTime; };
    const auto at = [](double seconds) {
        theTime = Clock::time_point() + std::chrono::duration_cast<Clock::duration>(
                                            std::chrono::duration<double>(1 + seconds));
    };
    std::string written;
    testing::internal::CaptureStderr();
    at(0);
    {
        ProgressLine line(true, "Work", platform::ProgressIn::kSteps, 1000, now);
        for (const auto& [done, seconds, shown] : kMoments) {
            at(seconds);
            EXPECT_TRUE(line.AdvanceTo(done));
            written += testing::internal::GetCapturedStderr();
            EXPECT_EQ(Shown(written), shown);
            testing::internal::CaptureStderr();
        }
    }
    written += testing::internal::GetCapturedStderr();
    EXPECT_EQ(Shown(written), "");
}

int heardBefore = 0;

TEST(Interrupt, IsNotedWhileOneLivesAndASecondEndsTheProcess) {
    const auto usual = std::signal(SIGINT, [](int) { ++heardBefore; });
    for (const bool isMet : {false, true}) {
        const Interrupt outer;
        {
            const Interrupt inner;
            EXPECT_FALSE(Interrupt::IsWanted());
            std::raise(SIGINT);
        }
        EXPECT_TRUE(Interrupt::IsWanted());
        ProgressLine silent(false, "", platform::ProgressIn::kSteps, 2);
        EXPECT_FALSE(silent.Advance());
        if (isMet) Interrupt::Meet();
        EXPECT_EQ(silent.Advance(), isMet);
    }
    EXPECT_FALSE(Interrupt::IsWanted());
    EXPECT_EQ(heardBefore, 2) << "it is not handed on";
    std::raise(SIGINT);
    EXPECT_EQ(heardBefore, 3) << "the handler before does not come back";

    const auto press = [](int times) {
        std::signal(SIGINT, SIG_DFL);
        const Interrupt interrupt;
        for (int i = 0; i < times; ++i)
            std::raise(SIGINT);
        std::_Exit(7);
    };
    EXPECT_EXIT(press(1), testing::ExitedWithCode(7), "");
    EXPECT_EXIT(press(2), testing::KilledBySignal(SIGINT), "");
    std::signal(SIGINT, usual);
}

}  // namespace
