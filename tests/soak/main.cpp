// Plays lives of host, user and Core, one for each seed, and shrinks those that end badly.

#include <gtest/gtest.h>

#include <CLI/CLI.hpp>
#include <chrono>
#include <cstdio>
#include <exception>
#include <random>

#include "tests/soak/shrink.h"
#include "tests/soak/soak.h"
#include "tests/support/folder/temporary_folder.h"

namespace {

soak::Life LifeOf(std::uint32_t seed, std::size_t steps) {
    std::mt19937 random(seed);
    soak::Life life(steps);
    for (soak::StepChoices& step : life)
        for (std::uint8_t& byte : step)
            byte = static_cast<std::uint8_t>(random());
    return life;
}

int Fail(const std::string& fault) {
    std::printf("FAILED: %s\n", fault.c_str());
    return 1;
}

// Each step is told before it is played, so that whatever ends the process ends behind its name.
int Play(const soak::Life& life) {
    std::setvbuf(stdout, nullptr, _IOLBF, 1 << 12);
    {
        soak::Soak soak;
        for (std::size_t index = 0; index < life.size(); ++index) {
            std::printf("%zu %s\n", index + 1, soak::StepOf(life[index]).name);
            const std::string fault = soak.Play(life[index]);
            if (!fault.empty()) return Fail(fault);
        }
        std::printf("rest\n");
        const std::string fault = soak.Rest();
        if (!fault.empty()) return Fail(fault);
        std::printf("end\n");
    }
    const bool failed = testing::UnitTest::GetInstance()->ad_hoc_test_result().Failed();
    return failed ? Fail("something is left at the end") : 0;
}

struct Settings {
    double seconds = 0;
    std::uint32_t seed = 0;
    std::uint32_t seeds = 1;
    std::size_t steps = 10000;
    bool survey = false;
    std::string file;  // of a life to play in this process
};

void TellFewest(const soak::Stage& stage, const soak::Life& life, const soak::Ending& ending) {
    const soak::Life shrunk = Shrink(stage, life, ending);
    std::printf("%s\nThe same in %zu steps:\n%s", ending.lastWords.c_str(), shrunk.size(),
                stage.Play(shrunk).said.c_str());
}

int PlaySeeds(const Settings& settings, const std::string& program) {
    const TemporaryFolder folder;
    const soak::Stage stage{program, folder.File("life")};
    const auto end =
        std::chrono::steady_clock::now() + std::chrono::duration<double>(settings.seconds);
    std::uint32_t played = 0;
    std::uint32_t failed = 0;
    while (played < settings.seeds ||
           (settings.seconds > 0 && std::chrono::steady_clock::now() < end)) {
        const std::uint32_t seed = settings.seed + played++;
        const soak::Life life = LifeOf(seed, settings.steps);
        const soak::Ending ending = stage.Play(life);
        if (ending.isGood) continue;
        ++failed;
        std::printf("Seed %u fails at step %zu: %s\n", seed, ending.step, ending.fault.c_str());
        std::fflush(stdout);
        if (settings.survey) continue;
        TellFewest(stage, life, ending);
        break;
    }
    std::printf("%u seeds of %zu steps, from seed %u: %u failed\n", played, settings.steps,
                settings.seed, failed);
    return failed == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) try {
    testing::InitGoogleTest(&argc, argv);
    Settings settings;
    settings.seed = std::random_device()();
    CLI::App app("Plays random lives of host, user and Core");
    app.add_option("seconds", settings.seconds, "Go on with further seeds for so long");
    app.add_option("--seed", settings.seed, "The first seed; else one that nobody chose");
    app.add_option("--seeds", settings.seeds, "At least so many seeds");
    app.add_option("--steps", settings.steps, "Steps of each seed");
    app.add_flag("--survey", settings.survey, "Go on after a seed that fails, and shrink none");
    app.add_option("--play", settings.file, "Play the life in this file here and now");
    CLI11_PARSE(app, argc, argv);
    if (!settings.file.empty()) return Play(soak::ReadLife(settings.file));
    return PlaySeeds(settings, argv[0]);
} catch (const std::exception& error) {
    std::fprintf(stderr, "soak: %s\n", error.what());
    return 1;
}
