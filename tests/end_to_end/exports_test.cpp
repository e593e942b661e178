#include <gtest/gtest.h>

// A module shows its contract and nothing else, so that it never shares a singleton with another.

namespace {

std::string ExportsOf(const std::string& module) {
    const std::string command =
        "nm -D --defined-only --format=posix '" + module + "' | cut -d' ' -f1 | LC_ALL=C sort";
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    std::string names;
    for (int c = fgetc(pipe.get()); c != EOF; c = fgetc(pipe.get()))
        names += c == '\n' ? ' ' : static_cast<char>(c);
    return names;
}

TEST(Exports, AreTheRoutinesOfTheContractsAlone) {
    EXPECT_EQ(ExportsOf(PLUGIN_MODULE), "LibClassDesc LibDescription LibNumberClasses LibVersion ");
    EXPECT_EQ(ExportsOf(CORE_FOLDER "/Core/Core64.so"), "attach detach getVersion ");
}

}  // namespace
