#include <sys/wait.h>

#include <cstdlib>
#include <string>

#include "platform/testing.h"

namespace platform {
namespace {

std::string Quoted(const std::filesystem::path& path) {
    return '"' + path.string() + '"';
}

}  // namespace

int RunProgram(const ProgramRun& run) {
    const std::string line = "cd " + Quoted(run.folder) + " && " + Quoted(run.program) + ' ' +
                             run.arguments + " >" + Quoted(run.out) + " 2>" + Quoted(run.error);
    const int status = std::system(line.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace platform
