#include "tests/end_to_end/command.h"

#include <algorithm>
#include <array>

#include "platform/testing.h"

namespace {

// Of the words of a verb that starts a Core, unless they say otherwise.
bool StartsACore(const std::string& words) {
    constexpr std::array kVerbs = {"record ", "open ",    "merge ",  "convert ", "render ",
                                   "info ",   "inspect ", "sample ", "export ",  "run "};
    constexpr std::array kOtherwise = {"--no-core", "--no-plugin", "help", "--watch"};
    return std::ranges::any_of(kVerbs, [&](auto verb) { return words.starts_with(verb); }) &&
           std::ranges::none_of(kOtherwise,
                                [&](auto word) { return words.find(word) != std::string::npos; });
}

}  // namespace

Ending Command::Run(const std::string& typed) const {
    std::string words = typed;
    if (isWatched_ && StartsACore(words)) words.insert(words.find(' '), " --watch=strict");
    PlaceRegistry(folder_, {core_, documents_});
    const int status = platform::RunProgram({.program = COMMAND,
                                             .arguments = platform::FromNarrow(words).native(),
                                             .out = folder_.Path() / "out",
                                             .error = folder_.Path() / "error",
                                             .folder = folder_.Path()});
    Ending ending{status, Read("out"), Read("error")};
    for (std::string* text : {&ending.out, &ending.error})
        std::erase(*text, '\r');  // at the ends of lines, on some systems
    return ending;
}

std::string Command::Do(const std::string& words) const {
    const Ending ending = Run(words);
    EXPECT_EQ(ending.status, 0) << words << '\n' << ending.error;
    return ending.out;
}

std::string Command::ExpectRefusal(const std::string& words, const std::string& what,
                                   int status) const {
    const Ending ending = Run(words);
    EXPECT_EQ(ending.status, status) << words << '\n' << ending.error;
    EXPECT_EQ(ending.out, "") << words;
    EXPECT_EQ(std::ranges::count(ending.error, '\n'), 1) << ending.error;
    EXPECT_TRUE(ending.error.starts_with("lumiset-headless: " + what)) << words << ending.error;
    return ending.error;
}

std::map<std::string, std::string> Command::Files() const {
    std::map<std::string, std::string> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder_.Path()))
        if (entry.is_regular_file())
            files[platform::ToNarrow(entry.path().filename())] = ReadFile(entry.path());
    for (const char* own : {"test.reg", "out", "error"})
        files.erase(own);
    return files;
}

std::string Line(const nlohmann::json& told, std::initializer_list<const char*> places) {
    std::string line;
    for (const std::string place : places)
        (line += line.empty() ? "" : " ") +=
            told.at(nlohmann::json::json_pointer('/' + place)).dump();
    return line;
}

std::string Walk(std::size_t frames) {
    std::string text =
        "HIERARCHY\nROOT Hip\n{\nOFFSET 0 0 0\n"
        "CHANNELS 6 Xposition Yposition Zposition Zrotation Yrotation Xrotation\n"
        "JOINT Knee\n{\nOFFSET 0 -0.5 0\nCHANNELS 3 Zrotation Yrotation Xrotation\n"
        "End Site\n{\nOFFSET 0 -0.5 0\n}\n}\n}\n"
        "MOTION\nFrames: " +
        std::to_string(frames) + "\nFrame Time: 0.05\n";
    for (std::size_t frame = 0; frame < frames; ++frame)
        text += std::to_string(static_cast<double>(frame) / 10) + " 1 0 0 0 " +
                std::to_string(frame) + " 0 0 0\n";
    return text;
}

std::string With(std::string text, const std::string& from, const std::string& to) {
    return text.replace(text.find(from), from.size(), to);
}
