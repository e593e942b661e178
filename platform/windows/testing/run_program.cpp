#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>

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
constexpr DWORD kOfTheSystem = 0x80000000;  // and above: what the system ends a program with

using Handle = std::unique_ptr<void, CloseIt>;

// An empty file that the program inherits.
Handle NewOutput(const std::filesystem::path& path) {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    return Handle(CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                              &inherited, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
}

// How a program ended, or the system's word for why it did not begin.
DWORD Run(const ProgramRun& run) {
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
        return kOfTheSystem | GetLastError();
    const Handle process(made.hProcess);
    const Handle thread(made.hThread);
    DWORD status = 0;
    WaitForSingleObject(process.get(), INFINITE);
    GetExitCodeProcess(process.get(), &status);
    return status;
}

bool IsEmpty(const std::filesystem::path& file) {
    std::error_code error;
    return std::filesystem::file_size(file, error) == 0;
}

}  // namespace

// Of some thousand programs Wine loses one before its first word. It is started again, and each
// time told; whatever fails by itself fails each time.
int RunProgram(const ProgramRun& run) {
    constexpr int kAttempts = 3;
    for (int attempt = 1; attempt <= kAttempts; ++attempt) {
        const DWORD status = Run(run);
        if (status < kOfTheSystem) return static_cast<int>(status);
        std::fprintf(stderr, "%ls: ended by the system with 0x%08lX\n", run.arguments.c_str(),
                     status);
        if (!IsEmpty(run.out) || !IsEmpty(run.error)) return -1;
    }
    return -1;
}

}  // namespace platform
