#include <memory>
#include <string>

#include "platform/testing.h"
#include "platform/win32.h"

// Started without the system's shell: under Wine that fails now and then at a program that ended
// well.
namespace platform {
namespace {

struct CloseIt {
    void operator()(HANDLE handle) const {
        if (handle != INVALID_HANDLE_VALUE) CloseHandle(handle);
    }
};
using Handle = std::unique_ptr<void, CloseIt>;

// An empty file that the program inherits.
Handle NewOutput(const std::filesystem::path& path) {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    return Handle(CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                              &inherited, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
}

int StatusOf(HANDLE process) {
    constexpr DWORD kLeastOfTheSystem = 0x80000000;  // what the system ends a program with
    DWORD status = 0;
    WaitForSingleObject(process, INFINITE);
    GetExitCodeProcess(process, &status);
    return status < kLeastOfTheSystem ? static_cast<int>(status) : -1;
}

}  // namespace

int RunProgram(const ProgramRun& run) {
    const Handle out = NewOutput(run.out);
    const Handle error = NewOutput(run.error);
    STARTUPINFOW start{};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdOutput = out.get();
    start.hStdError = error.get();
    const std::filesystem::path program = std::filesystem::path(run.program).make_preferred();
    std::wstring line = L'"' + program.native() + L"\" " + run.arguments;
    PROCESS_INFORMATION made{};
    if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr,
                        run.folder.c_str(), &start, &made))
        return -1;
    const Handle process(made.hProcess);
    const Handle thread(made.hThread);
    return StatusOf(process.get());
}

}  // namespace platform
