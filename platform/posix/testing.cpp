#include "platform/testing.h"

#include <malloc.h>
#include <sys/wait.h>

#include <cstdlib>
#include <string>
#include <system_error>

namespace platform {
namespace {

std::string Quoted(const std::filesystem::path& path) {
    return '"' + path.string() + '"';
}

}  // namespace

std::size_t RoomOfBlock(void* block) {
    return malloc_usable_size(block);
}

void RemoveFolder(const std::filesystem::path& folder) {
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
}

int RunProgram(const ProgramRun& run) {
    const std::string line = "cd " + Quoted(run.folder) + " && " + Quoted(run.program) + ' ' +
                             run.arguments + " >" + Quoted(run.out) + " 2>" + Quoted(run.error);
    const int status = std::system(line.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace platform
