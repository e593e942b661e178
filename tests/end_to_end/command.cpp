#include "tests/end_to_end/command.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iterator>
#include <sstream>

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

Ending Command::Run(const std::string& arguments, const std::string& coreFolder) const {
    PlaceRegistry(folder_, {coreFolder, documents_});
    const int status = platform::RunProgram({.program = COMMAND,
                                             .arguments = platform::FromNarrow(arguments).native(),
                                             .out = folder_.Path() / "out",
                                             .error = folder_.Path() / "error"});
    return {status, ReadText(File("out")), ReadText(File("error"))};
}

std::string Command::Do(const std::string& arguments, const std::string& coreFolder) const {
    const Ending ending = Run(arguments, coreFolder);
    EXPECT_EQ(ending.status, 0) << arguments << '\n' << ending.error;
    return ending.out;
}

void Command::ExpectFailure(const Ending& ending, const std::string& what, int status) {
    EXPECT_EQ(ending.status, status) << ending.error;
    EXPECT_EQ(ending.out, "");
    EXPECT_EQ(std::count(ending.error.begin(), ending.error.end(), '\n'), 1) << ending.error;
    EXPECT_EQ(ending.error.rfind("lumiset-headless: " + what, 0), 0U) << ending.error;
}

double Command::FurthestApart(std::string first, std::string second) {
    for (std::string* table : {&first, &second})
        std::ranges::replace(*table, '\n', ',');
    EXPECT_EQ(std::ranges::count(first, ','), std::ranges::count(second, ','));
    double furthest = 0;
    std::istringstream ones(first);
    std::istringstream others(second);
    std::string other;
    for (std::string one; std::getline(ones, one, ',') && std::getline(others, other, ',');)
        if (one != other)
            furthest = std::max(furthest, std::abs(std::stod(one) - std::stod(other)));
    return furthest;
}
