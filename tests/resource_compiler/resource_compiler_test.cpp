#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <fstream>
#include <string>

namespace {

std::string ReadFile(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

class ResourceCompiler : public testing::Test {
  protected:
    // Compiles the text as a script. Returns the exit status; `told` is what it printed.
    int Compile(const std::string& script) {
        std::ofstream(path_, std::ios::binary) << script;
        const std::string command = std::string(RESOURCE_COMPILER) + " " + path_ + " " + path_ +
                                    ".cpp " + path_ + ".d 2>" + path_ + ".txt";
        const int status = std::system(command.c_str());
        told = ReadFile(path_ + ".txt");
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    std::string told;
    const std::string path_ = testing::TempDir() + "script.rc";
};

TEST_F(ResourceCompiler, NamesTheFileAndTheLineOfAFault) {
    const std::string dialog = "1 DIALOG 0, 0, 9, 9\nBEGIN\n";
    const struct {
        std::string script;
        int line;
    } faults[] = {
        {"\n7 Note \"nowhere.txt\"\n", 2},
        {"\n\n#include \"nowhere.h\"\n", 3},
        {"#include \"script.rc\"\n", 1},
        {"#include nothing\n", 1},
        {"#endif\n", 1},
        {"#ifdef X\n", 1},
        {"#wrong\n", 1},
        {"#define A 1x\n", 1},
        {"#define A 99999999999999999999\n", 1},
        {"/* no end\n\n", 2},
        {"\n1 Note \"no end\n", 2},
        {"1 Note ;\n", 1},
        {"1\n", 1},
        {"Note 1\n", 1},
        {"1 DIALOG 0 0\n", 1},
        {"1 DIALOG 0, 0, 9, 9\nMENU 3\nBEGIN\nEND\n", 2},
        {"1 DIALOG 0, 0, 9, 9\nSTYLE WS_NONE\nBEGIN\nEND\n", 2},
        {dialog, 2},
        {dialog + "COMBOBOX 1, 1, 1, 1, 1\nEND\n", 3},
        {dialog + "LTEXT \"a\", UNKNOWN, 1, 1, 1, 1\nEND\n", 3},
        {dialog + "LTEXT \"a\", 1, 1, 1, 1\nEND\n", 4},
    };
    for (const auto& fault : faults) {
        EXPECT_EQ(Compile(fault.script), 1) << fault.script;
        const std::string place = path_ + ":" + std::to_string(fault.line) + ": ";
        EXPECT_EQ(told.substr(0, place.size()), place) << fault.script;
    }
}

TEST_F(ResourceCompiler, TellsTheBuildWhatASourceIsMadeFrom) {
    std::ofstream(testing::TempDir() + "ids.h") << "#pragma once\n#define ID 4\n";
    std::ofstream(testing::TempDir() + "note.txt") << "text";
    ASSERT_EQ(Compile("#include \"ids.h\"\nID Note \"note.txt\"\n"), 0) << told;
    const std::string dependencies = ReadFile(path_ + ".d");
    for (const std::string name : {"script.rc", "ids.h", "note.txt"}) {
        EXPECT_NE(dependencies.find(testing::TempDir() + name), std::string::npos) << name;
    }
}

}  // namespace
