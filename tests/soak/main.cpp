// Plays lives of host, user and Core, one for each seed, each in a process of its own, so that
// whatever ends one ends that process alone. A life that ends badly is shrunk.

#include <CLI/CLI.hpp>
#include <random>

#include "platform/testing.h"
#include "tests/soak/soak.h"

namespace {

using soak::kStepBytes;

// Steps of kStepBytes.
using Life = std::string;

Life LifeOf(std::uint32_t seed, std::size_t steps) {
    std::mt19937 random(seed);
    Life life(steps * kStepBytes, '\0');
    for (char& byte : life)
        byte = static_cast<char>(random());
    return life;
}

bool Holds(const play::Faults& faults) {
    if (!faults.empty()) std::printf("FAILED: %s\n", faults.front().c_str());
    return faults.empty();
}

// Each step is told before it is played, so that whatever ends the process ends behind its name.
bool PlayThrough(const Life& life, bool isRecorded) {
    soak::Soak soak(isRecorded);
    for (std::size_t at = 0; at + kStepBytes <= life.size(); at += kStepBytes) {
        const std::string_view step = std::string_view(life).substr(at, kStepBytes);
        std::printf("%zu %s\n", at / kStepBytes + 1, soak::StepOf(step).name);
        if (!Holds(soak.Step(step))) return false;
    }
    std::printf("rest\n");
    return Holds(soak.Rest());
}

int PlayHere(const std::string& file, bool isRecorded) {
    const Life life = ReadFile(file);
    if (life.empty()) throw std::runtime_error(file + " cannot be read, or is empty");
    std::setvbuf(stdout, nullptr, _IOLBF, 1 << 12);
    if (!PlayThrough(life, isRecorded)) return 1;
    const bool isLeft = testing::UnitTest::GetInstance()->ad_hoc_test_result().Failed();
    return isLeft && !Holds({"something is left at the end"}) ? 1 : 0;
}

struct Ending {
    bool isGood = false;
    std::size_t step = 0;            // the last that was begun
    std::string fault;               // what tells one bad ending from another
    std::vector<std::string> lines;  // all that was written
};

// Without what is another at each run or step.
std::string Plain(std::string line) {
    std::erase_if(line, [](unsigned char letter) { return std::isdigit(letter) != 0; });
    return line.starts_with("FAILED") ? line : line.substr(0, line.find(" in "));
}

// What the plays said first of a fault, be it their own words, a test's or a sanitizer's.
std::string FirstFault(const std::vector<std::string>& lines) {
    for (const char* mark : {"FAILED: ", "SUMMARY: ", "runtime error: "})
        for (const std::string& line : lines)
            if (const auto at = line.find(mark); at != std::string::npos)
                return Plain(line.substr(at));
    return "the process is gone";
}

// Plays lives in processes of the same program.
struct Theatre {
    std::filesystem::path program;
    bool isRecorded;
    TemporaryFolder folder;

    Ending Play(const Life& life) const {
        const std::string file = '"' + folder.Write("life", life) + '"';
        const std::string words = (isRecorded ? "--recorded --play " : "--play ") + file;
        Ending ending;
        ending.isGood = platform::RunProgram({.program = program,
                                              .arguments = std::filesystem::path(words).native(),
                                              .out = folder.Path() / "out",
                                              .error = folder.Path() / "error"}) == 0;
        std::istringstream said(ReadFile(folder.File("out")) + ReadFile(folder.File("error")));
        for (std::string line; std::getline(said, line); ending.lines.push_back(line))
            if (!line.empty() && std::isdigit(static_cast<unsigned char>(line[0])))
                ending.step = std::stoul(line);
        ending.fault = FirstFault(ending.lines);
        return ending;
    }

    // Leaves out runs of steps, long ones first, as long as the life ends in the same way without.
    Life Shrunk(Life life, const Ending& ending) const {
        if (ending.step > 0) life.resize(std::min(life.size(), ending.step * kStepBytes));
        for (std::size_t run = life.size() / kStepBytes / 2; run > 0; run /= 2)
            for (std::size_t from = 0; from < life.size();) {
                Life shorter = life;
                shorter.erase(from, run * kStepBytes);
                const Ending other = shorter.empty() ? Ending{true, 0, {}, {}} : Play(shorter);
                if (!other.isGood && other.fault == ending.fault)
                    life = std::move(shorter);
                else
                    from += run * kStepBytes;
            }
        return life;
    }
};

struct Settings {
    double seconds = 0;
    std::uint32_t seed = std::random_device()();
    std::uint32_t seeds = 1;
    std::size_t steps = 10000;
    bool isRecorded = false;
    std::string file;  // of a life to play in this process
};

void TellFewest(const Theatre& theatre, const Life& life, const Ending& ending) {
    const Life shrunk = theatre.Shrunk(life, ending);
    std::printf("\nThe same in %zu steps:\n", shrunk.size() / kStepBytes);
    for (const std::string& line : theatre.Play(shrunk).lines)
        std::printf("%s\n", line.c_str());
}

int PlaySeeds(const Settings& settings, const Theatre& theatre) {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::duration<double>(settings.seconds);
    std::uint32_t played = 0;
    for (; played < settings.seeds || (settings.seconds > 0 && Clock::now() < end); ++played) {
        const std::uint32_t seed = settings.seed + played;
        const Life life = LifeOf(seed, settings.steps);
        const Ending ending = theatre.Play(life);
        if (ending.isGood) continue;
        std::printf("Seed %u fails at step %zu: %s\n", seed, ending.step, ending.fault.c_str());
        std::fflush(stdout);
        TellFewest(theatre, life, ending);
        return 1;
    }
    std::printf("%u seeds of %zu steps, from seed %u: none failed\n", played, settings.steps,
                settings.seed);
    return 0;
}

}  // namespace

int main(int argc, char** argv) try {
    testing::InitGoogleTest(&argc, argv);
    Settings settings;
    CLI::App app("Plays random lives of host, user and Core");
    app.add_option("seconds", settings.seconds, "Go on with further seeds for so long");
    app.add_option("--seed", settings.seed, "The first seed; else one that nobody chose");
    app.add_option("--seeds", settings.seeds, "At least so many seeds");
    app.add_option("--steps", settings.steps, "Steps of each seed");
    app.add_flag("--recorded", settings.isRecorded, "Put the flight recorder between");
    app.add_option("--play", settings.file, "Play the life in this file here and now");
    CLI11_PARSE(app, argc, argv);
    if (!settings.file.empty()) return PlayHere(settings.file, settings.isRecorded);
    return PlaySeeds(settings, {argv[0], settings.isRecorded, {}});
} catch (const std::exception& error) {
    std::fprintf(stderr, "soak: %s\n", error.what());
    return 1;
}
