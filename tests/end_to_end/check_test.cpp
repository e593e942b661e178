#include <algorithm>
#include <regex>

#include "platform/process.h"
#include "tests/end_to_end/command.h"
#include "tests/support/mistakes/mistakes.h"

// What check-core says of Cores that are well, and of those that are not.

namespace {

class CheckCore : public Command {
  protected:
    void SetUp() override { std::filesystem::create_directory(folder_.Path() / "tapes"); }
    void TearDown() override {
        for (const char* const name : {mistakes::kVariable, "LUMISET_CAPTURE"})
            platform::SetVariable(name, "");
    }

    static std::string Words(const std::string& core, const std::string& options) {
        return "check-core \"" + core + "\" --tapes tapes " + options;
    }

    // The outcomes, by their names.
    std::map<std::string, Json> Outcomes(const std::string& core, const std::string& options) {
        const Ending ending = Run(Words(core, "--json " + options));
        std::map<std::string, Json> outcomes;
        const Json told = Json::parse(ending.out);
        for (const Json& check : told["checks"])
            outcomes[check["name"].get<std::string>()] = check;
        EXPECT_EQ(ending.status, std::ranges::any_of(outcomes, [](const auto& outcome) {
                      return outcome.second["outcome"] == "FAILED";
                  }));
        return outcomes;
    }

    const std::string replay_ = std::string(CORE_FOLDER) + '/' + CORE_FILE;
};

TEST_F(CheckCore, CoresThatAreWellPassAtTheStrictest) {
    EXPECT_TRUE(Do(Words(HELLO_CORE, "--strictness 10 --junit checks.xml"))
                    .ends_with("0 failed, 1 not applicable\n"));
    EXPECT_NE(Read("checks.xml").find("<skipped message=\"it knows none"), std::string::npos);
    EXPECT_NE(Do(Words(replay_, "")).find(" 0 failed, "), std::string::npos);
    platform::SetVariable("LUMISET_CAPTURE", Write("walk.bvh", Walk(20)));
    EXPECT_TRUE(Do(Words(replay_, "")).ends_with(" 0 failed, 0 not applicable\n"));
    EXPECT_TRUE(std::filesystem::is_empty(folder_.Path() / "tapes"));
}

TEST_F(CheckCore, AFileThatCannotBeWrittenIsToldBeforeAnyCheck) {
    ExpectRefusal(Words(HELLO_CORE, "--junit no/where.xml"), "no/where.xml: ", 1);
}

TEST_F(CheckCore, EachMistakeIsSeenByItsCheck) {
    for (const mistakes::Mistake& mistake : mistakes::kMistakes) {
        platform::SetVariable(mistakes::kVariable, mistake.name);
        const Ending ending = Run(Words(MISTAKES_CORE, std::string("--only ") + mistake.check));
        const std::string expected =
            *mistake.rule ? std::string("\nFAILED ") + mistake.check + ": " + mistake.rule + ": "
                          : std::string("passed ") + mistake.check + '\n';
        EXPECT_NE(ending.out.find(expected), std::string::npos) << mistake.name << ending.out;
        EXPECT_EQ(ending.status, *mistake.rule ? 1 : 0) << mistake.name;
    }
}

// The process of a check ends where that of the others goes on.
TEST_F(CheckCore, WhateverBecomesOfACheckItIsOneFailedRowWithAllThatHelps) {
    auto outcomes = Outcomes(STRAY_CORE, "--strictness 7 --time-limit 2.5 --junit checks.xml");
    const std::vector<std::pair<const char*, const char*>> kFailed = {
        {"new-scene", kIsWindows ? "" : "ended"},
        {"press", "exception-out: ShowCore"},
        {"time", "not over after 2.5 seconds"},
        {"far-away", "the plug-in or its Core has ended the process"}};
    for (const auto& [name, why] : kFailed) {
        const Json& outcome = outcomes[name];
        EXPECT_EQ(outcome["outcome"], "FAILED") << outcome;
        EXPECT_NE(outcome["why"].get<std::string>().find(why), std::string::npos) << outcome;
        for (const char* const kept : {"tape", "log"})
            EXPECT_TRUE(std::filesystem::exists(folder_.Path() / outcome[kept])) << outcome;
        EXPECT_TRUE(Line(outcome, {"alone"}).ends_with(std::string("--only ") + name + '"'));
    }
    EXPECT_FALSE(outcomes.contains("random-steps"));
    const std::string junit = Read("checks.xml");
    for (const char* const part :
         {"<testcase classname=\"level 3\" name=\"press\" time=",
          "<failure message=\"exception-out", "alone: lumiset-headless check-core "})
        EXPECT_NE(junit.find(part), std::string::npos) << part << junit;
}

TEST_F(CheckCore, ASeedGoesTheSameWayAgain) {
    const auto walk = [&](const std::string& seed) {
        const Ending ending = Run(Words(HELLO_CORE, "--only random-steps --seed " + seed));
        return std::regex_replace(ending.error, std::regex("random-steps-" + seed), "");
    };
    const std::string once = walk("7");
    EXPECT_GT(std::ranges::count(once, '\n'), 60);
    EXPECT_EQ(walk("7"), once);
    EXPECT_NE(walk("8"), once);
    const auto outcomes = Outcomes(HELLO_CORE, "--reproduce 7");
    ASSERT_EQ(outcomes.size(), 3U);
    for (const auto& [name, outcome] : outcomes)
        EXPECT_EQ(Line(outcome, {"seed", "outcome"}), "7 \"passed\"");
}

TEST_F(CheckCore, RefusesWhatCannotBeMeantAndStopsWhereThereIsNoCore) {
    const std::vector<std::pair<const char*, const char*>> kWrong = {
        {"--only undu", "--only: there is no check \"undu\"; undo is the nearest"},
        {"--strictness 11", "--strictness: 11 is not from 1 to 10"},
        {"--strictness x", "--strictness: \"x\" is not a whole number"},
        {"--seed 0", "a seed is a whole number from 1 on"},
        {"--seed 1 --reproduce 1", "--"},
        {"--reproduce 1 --strictness 5", "--reproduce: random checks are made from --strictness 9"},
        {"--time-limit 0", "--time-limit: "}};
    for (const auto& [words, what] : kWrong)
        ExpectRefusal(Words(HELLO_CORE, words), what, 2);
    const auto outcomes = Outcomes("nowhere", "");
    ASSERT_EQ(outcomes.size(), 1U);
    EXPECT_NE(outcomes.at("loads")["why"].get<std::string>().find("there is no library"),
              std::string::npos);
}

}  // namespace
