#include "end_to_end/command.h"

#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

Command::Command() {
    std::string pattern =
        (std::filesystem::temp_directory_path() / "lumiset_command_XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
}

Command::~Command() {
    std::filesystem::remove_all(folder_);
}

std::string Command::Write(const std::string& name, const std::string& text) const {
    std::ofstream(File(name), std::ios::binary) << text;
    return File(name);
}

std::string Command::Read(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

Ending Command::Run(const std::string& arguments, const std::string& coreFolder) const {
    const std::string registry =
        Write("command.reg",
              "Windows Registry Editor Version 5.00\n\n"
              "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Wow6432Node\\Tarvo Works\\Ostrel tools]\n"
              "\"datapath\"=\"" +
                  coreFolder + "\"\n");
    const std::string line = "LUMISET_REGISTRY=" + registry + " " + COMMAND + " " + arguments +
                             " >" + File("out") + " 2>" + File("error");
    const int status = std::system(line.c_str());
    return {WEXITSTATUS(status), Read(File("out")), Read(File("error"))};
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
