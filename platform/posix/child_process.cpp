#include "platform/child_process.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <string_view>
#include <system_error>
#include <thread>

#include "platform/common/text.h"

namespace platform {
namespace {

// How the child is set up: nothing to read, one file to write to, and a group of its own, so that
// it can be ended with what it has started.
class Setting {
  public:
    explicit Setting(const std::string& output) {
        posix_spawn_file_actions_init(&files);
        posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, output.c_str(),
                                         O_WRONLY | O_CREAT | O_TRUNC, 0666);
        posix_spawn_file_actions_adddup2(&files, STDOUT_FILENO, STDERR_FILENO);
        posix_spawnattr_init(&attributes);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
    }
    ~Setting() {
        posix_spawnattr_destroy(&attributes);
        posix_spawn_file_actions_destroy(&files);
    }
    Setting(const Setting&) = delete;
    Setting& operator=(const Setting&) = delete;

    posix_spawn_file_actions_t files{};
    posix_spawnattr_t attributes{};
};

std::string WordsFor(int error) {
    return std::system_category().message(error);
}

ChildEnding EndingOf(int status) {
    if (WIFEXITED(status)) return {WEXITSTATUS(status), {}};
    const int signal = WTERMSIG(status);
    return {0, "ended by signal " + std::to_string(signal) + " (" + strsignal(signal) + ")"};
}

// Looks more seldom the longer it takes.
ChildEnding WaitFor(pid_t child, const ChildRun& run) {
    using Clock = std::chrono::steady_clock;
    constexpr std::chrono::milliseconds kLongestNap{20};
    const auto end = Clock::now() + std::chrono::duration<double>(run.seconds);
    for (std::chrono::milliseconds nap{1};; nap = std::min(nap * 2, kLongestNap)) {
        int status = 0;
        const pid_t ended = waitpid(child, &status, WNOHANG);
        if (ended == child) return EndingOf(status);
        if (ended < 0 && errno != EINTR) return {0, "lost: " + WordsFor(errno)};
        if (Clock::now() >= end || run.isGivenUp()) break;
        std::this_thread::sleep_for(nap);
    }
    kill(-child, SIGKILL);
    waitpid(child, nullptr, 0);
    return {0, NotOverAfter(run.seconds)};
}

}  // namespace

ChildEnding RunChild(const ChildRun& run) {
    std::vector<std::string> words = run.arguments;
    words.insert(words.begin(), run.program.native());
    std::vector<char*> line;
    for (std::string& word : words)
        line.push_back(word.data());
    line.push_back(nullptr);
    const Setting setting(run.output.native());
    pid_t child = 0;
    const int error = posix_spawn(&child, line.front(), &setting.files, &setting.attributes,
                                  line.data(), environ);
    if (error != 0) return {0, "not started: " + WordsFor(error)};
    return WaitFor(child, run);
}

std::string AsTyped(const std::string& word) {
    constexpr std::string_view kMeansMore = " \t\n'\"\\$&;()<>|*?[]{}#~!`^";
    if (!word.empty() && word.find_first_of(kMeansMore) == word.npos) return word;
    std::string typed = "'";
    for (const char c : word)
        typed += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return typed + '\'';
}

}  // namespace platform
