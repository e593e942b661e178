#include "platform/child_process.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>

#include "platform/common/text.h"
#include "platform/narrow_path.h"
#include "platform/win32.h"
#include "platform/windows/last_error.h"

namespace platform {
namespace {

struct CloseHandleOf {
    void operator()(HANDLE handle) const {
        if (handle != INVALID_HANDLE_VALUE) CloseHandle(handle);
    }
};
using ChildHandle = std::unique_ptr<void, CloseHandleOf>;

constexpr DWORD kFromTheSystem = 0x80000000;  // and above: what the system ends a program with

// As the run-time library of the program takes its command line apart: a quotation mark, and
// backslashes ahead of one, each stand behind a backslash more.
std::wstring InLine(const std::wstring& word) {
    std::wstring quoted = L"\"";
    std::size_t slashes = 0;
    for (const wchar_t letter : word) {
        if (letter == L'"') quoted.append(slashes + 1, L'\\');
        slashes = letter == L'\\' ? slashes + 1 : 0;
        quoted += letter;
    }
    return quoted.append(slashes, L'\\') + L'"';
}

std::wstring LineOf(const ChildRun& run) {
    std::wstring line = InLine(std::filesystem::path(run.program).make_preferred().native());
    for (const std::string& word : run.arguments)
        line += L' ' + InLine(FromNarrow(word).native());
    return line;
}

ChildHandle OutputOf(const ChildRun& run) {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    return ChildHandle(CreateFileW(run.output.c_str(), GENERIC_WRITE,
                                   FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited, CREATE_ALWAYS,
                                   FILE_ATTRIBUTE_NORMAL, nullptr));
}

ChildEnding WaitFor(HANDLE process, const ChildRun& run) {
    constexpr DWORD kNap = 50;  // milliseconds
    const double most = std::min(run.seconds * 1000, static_cast<double>(INFINITE));
    const ULONGLONG end = GetTickCount64() + static_cast<ULONGLONG>(most);
    while (WaitForSingleObject(process, kNap) == WAIT_TIMEOUT) {
        if (GetTickCount64() < end && !run.isGivenUp()) continue;
        TerminateProcess(process, 1);
        WaitForSingleObject(process, INFINITE);
        return {0, NotOverAfter(run.seconds)};
    }
    DWORD status = 0;
    GetExitCodeProcess(process, &status);
    if (status < kFromTheSystem) return {static_cast<int>(status), {}};
    std::array<char, 40> words;
    std::snprintf(words.data(), words.size(), "ended by the system with 0x%08lX", status);
    return {0, words.data()};
}

}  // namespace

// A box that tells of a crash would wait for somebody to read it.
ChildEnding RunChild(const ChildRun& run) {
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
    const ChildHandle output = OutputOf(run);
    STARTUPINFOW start{};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdOutput = output.get();
    start.hStdError = output.get();
    std::wstring line = LineOf(run);
    PROCESS_INFORMATION made{};
    if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start,
                        &made))
        return {0, "not started: " + WordsForLastError()};
    const ChildHandle process(made.hProcess);
    const ChildHandle thread(made.hThread);
    return WaitFor(process.get(), run);
}

// No name of a file has a quotation mark.
std::string AsTyped(const std::string& word) {
    const bool isPlain = !word.empty() && word.find_first_of(" &()^;,=|<>") == word.npos;
    return isPlain ? word : '"' + word + '"';
}

}  // namespace platform
