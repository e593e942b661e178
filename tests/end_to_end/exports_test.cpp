#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <set>
#include <sstream>
#include <string>

// A module shows its contract and nothing else, so that it never shares a singleton with another.

namespace {

std::set<std::string> ExportsOf(const std::string& module) {
    const std::string command = "nm -D --defined-only --format=posix '" + module + "'";
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    std::string text;
    char block[512];
    while (pipe && fgets(block, sizeof block, pipe.get()))
        text += block;
    std::set<std::string> names;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        names.insert(line.substr(0, line.find(' ')));
    return names;
}

TEST(Exports, OfThePlugInAreTheFourRoutinesThatAHostAsksFor) {
    EXPECT_EQ(ExportsOf(PLUGIN_MODULE), (std::set<std::string>{"LibClassDesc", "LibDescription",
                                                               "LibNumberClasses", "LibVersion"}));
}

TEST(Exports, OfACoreAreTheThreeRoutinesThatTheAdaptorBinds) {
    EXPECT_EQ(ExportsOf(std::string(CORE_FOLDER) + "/Core/Core64.so"),
              (std::set<std::string>{"attach", "detach", "getVersion"}));
}

}  // namespace
