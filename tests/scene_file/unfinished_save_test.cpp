#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <random>

#include "tests/scene_file/file_world.h"

// Saves that do not come to their end, brought about by the means of POSIX.

namespace {

class UnfinishedSave : public FileWorld {};

TEST_F(UnfinishedSave, OnAFullDiskLeavesTheOldFileUntouchedAndAlone) {
    const std::string built = SaveBuilt();
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit full{built.size() / 2, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &full);
    const std::string error = Host().SaveScene(File("built")).error;
    setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_TRUE(error.starts_with(File("built") + ": ")) << error;
    EXPECT_EQ(ReadFile(File("built")), built);
    EXPECT_EQ(FilesInFolder(), 1U);
}

// A process is killed while it saves one scene over the other, and over again.
TEST_F(UnfinishedSave, LeavesOneSceneOrTheOtherHoweverItIsKilled) {
    const std::string built = SaveBuilt();
    Host().Select({});
    const std::string other = Save("other");
    ASSERT_NE(built, other);
    std::minstd_rand random(1);
    for (int round = 0; round < 100; ++round) {
        const pid_t child = fork();
        if (child == 0) {
            for (bool selected = true;; selected = !selected) {
                Host().Select(selected ? std::vector<std::string>{"Hip", "line"}
                                       : std::vector<std::string>{});
                if (!Host().SaveScene(File("built")).error.empty()) _exit(1);
            }
        }
        usleep(static_cast<useconds_t>(random() % 20000));
        kill(child, SIGKILL);
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_TRUE(WIFSIGNALED(status));
        const std::string now = ReadFile(File("built"));
        EXPECT_TRUE(now == built || now == other) << round;
    }
    EXPECT_EQ(Host().OpenScene(File("built")).error, "");
    EXPECT_EQ(Save("again"), ReadFile(File("built")));
}

}  // namespace
