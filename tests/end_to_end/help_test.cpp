#include <regex>
#include <sstream>

#include "platform/testing.h"
#include "tests/end_to_end/command.h"

// What the command tells of itself: help, manual and completion.

namespace {

class Help : public Command {
  protected:
    // The rows of the program's help that stand ahead of its options.
    std::vector<std::string> Verbs() const {
        const std::string help = Do("help");
        std::istringstream rows(help.substr(0, help.find("\nOptions:")));
        std::vector<std::string> verbs;
        for (std::string row; std::getline(rows, row);)
            if (row.starts_with("  ") && row[2] != ' ')
                verbs.push_back(row.substr(2, row.find("  ", 2) - 2));
        return verbs;
    }

    // Behind the command's name, without what a shell makes of it.
    static std::string Example(std::string help) {
        constexpr std::string_view kTitle = "\nExample:\n  lumiset-headless ";
        help.erase(0, std::min(help.size(), help.find(kTitle) + kTitle.size()));
        help = help.substr(0, help.find("\n\n"));
        while (help.find("\\\n") != std::string::npos)
            help = With(help, "\\\n", "");
        return help.substr(0, help.find_first_of("|>\n"));
    }
};

TEST_F(Help, IsInOurWordsAndIn80ColumnsAndItsExamplesWork) {
    Write("walk.bvh", With(Walk(5), "Hip", "Hips"));
    std::filesystem::create_directories(folder_.Path() / "build/Core");
    std::filesystem::copy_file(HELLO_CORE, folder_.Path() / "build/Core/Core64.so");
    Do("record walk.bvh -o walk.scene --tape walk.tape");
    const std::vector<std::string> verbs = Verbs();
    ASSERT_GE(verbs.size(), 13U);
    const std::string manual = Do("manual");
    for (const std::string& verb : verbs) {
        const std::string help = Do(verb + " --help");
        EXPECT_EQ(help, Do("help " + verb));
        EXPECT_TRUE(help.starts_with("Usage: lumiset-headless " + verb + ' ')) << help;
        const std::string inManual = std::regex_replace(verb, std::regex("-"), "\\-");
        EXPECT_NE(manual.find(".SS \"lumiset\\-headless " + inManual + ' '), std::string::npos);
        std::istringstream lines(help);
        for (std::string line; std::getline(lines, line);)
            EXPECT_LE(line.size(), 80U) << line;
        for (const char* parsers :
             {"FLOAT", "TEXT:", "INT", "REQUIRED", "Excludes", "Needs", "{}", "[default"})
            EXPECT_EQ(help.find(parsers), std::string::npos) << parsers << " in " << help;
        EXPECT_FALSE(std::regex_search(help, std::regex("(--[a-z-]+|[A-Z]+) TEXT"))) << help;
        EXPECT_TRUE(Example(help).starts_with(verb)) << help;
        std::filesystem::remove(File("again.tape"));
        std::filesystem::copy_file(File("walk.tape"), File("again.tape"));
        if (verb != "render" || !kIsWindows) Do(Example(help));
    }
    EXPECT_EQ(Do("record help"), Do("record --help"));
    const std::string record = Do("help record");
    for (const char* words : {"a number above 0;", "; 0.056444 if not", "; also --scene\n"})
        EXPECT_NE(record.find(words), std::string::npos) << words;
}

TEST_F(Help, CompletesVerbsOptionsValuesAndFilesInBash) {
    constexpr char kBash[] = "/bin/bash";
    if (kIsWindows || !std::filesystem::exists(kBash)) GTEST_SKIP() << "bash is missing";
    Write("completion", Do("completion"));
    Write("walk.bvh", "");
    Write("two words.bvh", "");
    Write(
        "typed",
        "set -u\n. ./completion\n"
        "complete_line() { COMP_WORDS=(lumiset-headless \"$@\") COMP_CWORD=$#; _lumiset_headless\n"
        "    (IFS=,; echo \"${COMPREPLY[*]-}\"); }\n"
        "complete_line ren\n"
        "complete_line record --sc\n"
        "complete_line render --fo\n"
        "complete_line record wal\n"
        "complete_line record 'two '\n"
        "complete_line open x --save = wal\n"
        "complete_line --json sample --times = wal\n"
        "complete_line help me\n"
        "complete_line manual ''\n"
        "complete_line run --do exp\n"
        "complete_line tape pr\n"
        "complete_line tape print --op\n"
        "complete_line tape info wal\n"
        "complete_line help tape pr\n"
        "complete_line help tape print ''\n"
        "complete_line run --watch = s\n");
    const int status = platform::RunProgram({.program = kBash,
                                             .arguments = platform::FromNarrow("typed").native(),
                                             .out = folder_.Path() / "out",
                                             .error = folder_.Path() / "error",
                                             .folder = folder_.Path()});
    EXPECT_TRUE(status == 0 && Read("error").empty()) << Read("error");
    EXPECT_EQ(Read("out"),
              "render\n--scene,--scale\n--follow\nwalk.bvh\ntwo words.bvh\nwalk.bvh\n"
              "\nmerge\n\nexpect\nprint\n--operation\nwalk.bvh\nprint\n\nstrict\n");
}

}  // namespace
