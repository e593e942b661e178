#include "bench/texts.h"

#include <algorithm>
#include <random>
#include <string_view>

namespace {

constexpr unsigned kSeed = 7;

constexpr std::string_view kWords[] = {
    "the",    "of",     "and",    "to",       "in",      "a",      "walk",    "hand",  "turns",
    "slowly", "before", "weight", "shifts",   "over",    "left",   "foot",    "while", "arm",
    "swings", "back",   "then",   "shoulder", "follows", "with",   "little",  "delay", "as",
    "if",     "pulled", "by",     "thread",   "its",     "motion", "settles", "where", "it",
    "began",  "half",   "second", "earlier",  "nobody",  "quite",  "knows",   "which", "breath"};

constexpr std::string_view kJoints[] = {"Hips",    "LeftUpLeg", "LeftLeg",  "LeftFoot",
                                        "Spine",   "Spine1",    "Neck",     "Head",
                                        "LeftArm", "LeftHand",  "RightArm", "RightForeArm"};

// Common words come more often.
std::string_view WordOf(std::mt19937& random) {
    constexpr std::size_t count = std::size(kWords);
    return kWords[std::min(random() % count, random() % count)];
}

std::string NumberOf(std::mt19937& random) {
    const auto number = static_cast<std::int32_t>(random() % 200'000'000) - 100'000'000;
    return std::to_string(static_cast<double>(number) / 1e6);
}

std::string Attribute(std::string_view name, std::string_view value) {
    return " " + std::string(name) + "=\"" + std::string(value) + "\"";
}

std::string NodeOf(std::mt19937& random) {
    std::string node = "<node";
    node += Attribute("id", std::to_string(random() % 100'000));
    node += Attribute("kind", "joint");
    node += Attribute("length", NumberOf(random));
    node += Attribute("name", kJoints[random() % std::size(kJoints)]);
    node += Attribute("parent", std::to_string(random() % 100'000));
    for (const char* axis : {"x", "y", "z"})
        node += Attribute(axis, NumberOf(random));
    return node + "/>";
}

}  // namespace

std::string ProseOf(std::size_t bytes) {
    std::mt19937 random(kSeed);
    std::string text;
    while (text.size() < bytes) {
        std::string sentence;
        for (std::size_t words = 5 + random() % 15; words > 0; --words)
            sentence += std::string(WordOf(random)) + (random() % 9 == 0 ? ", " : " ");
        sentence[0] = static_cast<char>(sentence[0] - 'a' + 'A');
        sentence.back() = '.';
        text += sentence + (random() % 6 == 0 ? "\n" : " ");
    }
    return text;
}

std::string NumbersOf(std::size_t bytes) {
    std::mt19937 random(kSeed);
    std::string text;
    while (text.size() < bytes)
        text += NumberOf(random) + (random() % 12 == 0 ? "\n" : " ");
    return text;
}

std::string StateOf(std::size_t bytes) {
    constexpr int kNodesOfTake = 31;
    std::mt19937 random(kSeed);
    std::string text = R"(<state version="3">)";
    for (int take = 0; text.size() < bytes; ++take) {
        text += "<take" + Attribute("frames", std::to_string(random() % 9999)) +
                Attribute("title", "Take " + std::to_string(take)) + ">";
        for (int node = 0; node < kNodesOfTake; ++node)
            text += NodeOf(random);
        text += "</take>";
    }
    return text + "</state>";
}

std::string LongTextsOf(std::size_t bytes) {
    constexpr std::size_t kTextBytes = 20'000;
    std::string prose = ProseOf(kTextBytes);
    std::ranges::replace(prose, '\n', ' ');  // which would be written as a reference
    std::string text = "<notes>";
    while (text.size() < bytes)
        text += "<note>" + prose + "</note>";
    return text + "</notes>";
}

std::string NoiseOf(std::size_t bytes) {
    std::mt19937 random(kSeed);
    std::string noise(bytes, '\0');
    for (char& byte : noise)
        byte = static_cast<char>(random());
    return noise;
}

bool Register(std::span<const TextWork> works, const char* who, TextBenchmark run) {
    for (const TextWork& work : works) {
        const auto onText = [run, textOf = work.textOf](benchmark::State& state) {
            run(state, textOf(static_cast<std::size_t>(state.range(0))));
        };
        benchmark::RegisterBenchmark((std::string(work.name) + '/' + who).c_str(), onText)
            ->RangeMultiplier(10)
            ->Range(TextWork().mostBytes, work.mostBytes);
    }
    return true;
}
