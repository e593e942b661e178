#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>

#include "tests/end_to_end/command.h"

// Long work on a terminal, on which Ctrl-C is pressed as soon as the work shows.

namespace {

class Stopping : public Command {
  protected:
    void SetUp() override {
        for (const char* folder : {"work", "work/passing"})
            std::filesystem::create_directory(folder_.Path() / folder);
        Write("work/short.bvh", Walk(2000));
        Do("record work/short.bvh --scale 1 -o work/short.scene");
        Do("record work/short.bvh --scale 1 -o work/old.scene");
        PlaceRegistry(folder_, {core_, documents_});
    }

    // What a person sees, and the status.
    Ending RunUntil(const std::string& sign, const std::string& words) const {
        int terminal = -1;
        const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
        if (child == 0) {
            const std::string line = "exec " COMMAND " " + words;
            setenv("TMPDIR", File("work/passing").c_str(), 1);
            if (chdir(File("work").c_str()) == 0)
                execl("/bin/sh", "sh", "-c", line.c_str(), nullptr);
            _exit(99);
        }
        Ending ending{-1, {}, {}};
        bool isPressed = false;
        std::array<char, 4096> bytes;
        for (ssize_t count = 0; (count = read(terminal, bytes.data(), bytes.size())) > 0;) {
            ending.out.append(bytes.data(), static_cast<std::size_t>(count));
            if (isPressed || ending.out.find(sign) == std::string::npos) continue;
            isPressed = write(terminal, "\x03", 1) == 1;
        }
        EXPECT_TRUE(isPressed) << sign << '\n' << ending.out;
        int status = 0;
        waitpid(child, &status, 0);
        ending.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        close(terminal);
        return ending;
    }
};

TEST_F(Stopping, NothingIsHalfWrittenOrLeftOver) {
    struct Case {
        std::string sign;
        std::string words;
        std::string told;                  // on its last line
        std::vector<std::string> written;  // files that are there then and were not before
    };
    Write("work/long.bvh", Walk(150000));
    std::string many = "merge short.scene --by-host -o old.scene";
    for (int i = 0; i < 600; ++i)
        many += " short.scene";
    const std::vector<Case> cases = {
        {"Recording",
         "record long.bvh --scale 1 -o new.scene --csv new.csv --poses new.poses",
         " of 150000; saved all the same: new.scene",
         {"new.scene"}},
        {"Recording",
         "record long.bvh --take short --scale 1 --into old.scene -o old.scene",
         " of 150000; nothing was saved, old.scene is as it was",
         {}},
        {"Reading back",
         "record long.bvh --scale 1 -o again.scene",
         "the recording is whole, but reading it back was stopped; saved all the same: again.scene",
         {"again.scene"}},
        {"Writing",
         "record long.bvh --scale 1 -o whole.scene",
         " %; saved all the same: whole.scene",
         {"whole.scene"}},
        {"1  loads ",
         "check-core '" + std::string(CORE_FOLDER) + '/' + CORE_FILE + '\'',
         "stopped: Checking ended after ",
         {}},
        {"Finding the ground",
         "record long.bvh --ground --scale 1 -o old.scene",
         "at frame 0 of 150000; nothing was saved, old.scene is as it was",
         {}},
        {"Sampling",
         "sample short.scene --times 0:9000:0.001 -o new.csv",
         " of 9000001; nothing was saved",
         {}},
        {"Drawing",
         "render short.scene --frames 0:99999:1 --size 64x64 -o new%04d.png",
         " of 100000 pictures; saved all the same: new0000.png",
         {"new0000.png"}},
        {"Aiming",
         "render short.scene --frames 0:9999999:1 --size 64x64 -o new%04d.png",
         " %; nothing was saved",
         {}},
        {"Drawing",
         "render short.scene --frames 0:9999:1 --size 64x64 --sheet 100 -o new.png",
         " of 10000 pictures; nothing was saved",
         {}},
        {"Exporting", "export short.scene --fps 4800 -o new.bvh", " %; nothing was saved", {}},
        {"Reading", many, "; nothing was saved, old.scene is as it was", {}},
    };
    for (const auto& [sign, words, told, written] : cases) {
        SCOPED_TRACE(words.substr(0, 80));
        std::map<std::string, std::string> expected = Files();
        const Ending ending = RunUntil(sign, words);
        EXPECT_EQ(ending.status, 130) << ending.out;
        EXPECT_NE(ending.out.find("lumiset-headless: stopped: "), std::string::npos) << ending.out;
        EXPECT_NE(ending.out.find(told), std::string::npos) << ending.out;
        const std::map<std::string, std::string> files = Files();
        for (const std::string& name : written) {
            EXPECT_TRUE(files.contains(name)) << name;
            expected[name] = files.contains(name) ? files.at(name) : "";
        }
        if (sign != "Drawing" || written.empty()) {
            EXPECT_TRUE(files == expected) << files.size();
        }
        EXPECT_TRUE(std::filesystem::is_empty(folder_.Path() / "work/passing"));
        for (const auto& [name, bytes] : files)
            if (!expected.contains(name)) {
                EXPECT_TRUE(name.ends_with(".png")) << name;
                std::filesystem::remove(File("work/" + name));
            }
    }
    EXPECT_NE(Do("open work/new.scene").find("Take long: "), std::string::npos);
}

}  // namespace
