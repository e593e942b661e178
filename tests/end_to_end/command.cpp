#include "tests/end_to_end/command.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "platform/narrow_path.h"
#include "platform/testing.h"
#include "tests/support/folder/surroundings.h"

namespace {

// As text, which has one sign for the end of a line.
std::string ReadText(const std::string& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

Ending Command::Run(const std::string& words, const std::string& coreFolder) const {
    PlaceRegistry(folder_, {coreFolder, documents_});
    const int status = platform::RunProgram({.program = COMMAND,
                                             .arguments = platform::FromNarrow(words).native(),
                                             .out = folder_.Path() / "out",
                                             .error = folder_.Path() / "error",
                                             .folder = folder_.Path()});
    return {status, ReadText(File("out")), ReadText(File("error"))};
}

std::string Command::Do(const std::string& words, const std::string& coreFolder) const {
    const Ending ending = Run(words, coreFolder);
    EXPECT_EQ(ending.status, 0) << words << '\n' << ending.error;
    return ending.out;
}

void Command::ExpectRefusal(const std::string& words, const std::string& what, int status,
                            const std::string& coreFolder) const {
    const Ending ending = Run(words, coreFolder);
    EXPECT_EQ(ending.status, status) << words << '\n' << ending.error;
    EXPECT_EQ(ending.out, "") << words;
    EXPECT_EQ(std::count(ending.error.begin(), ending.error.end(), '\n'), 1) << ending.error;
    EXPECT_TRUE(ending.error.starts_with("lumiset-headless: " + what)) << words << ending.error;
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
